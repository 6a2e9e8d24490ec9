# SPDX-License-Identifier: Apache-2.0
"""Shows the values of nxcore in gdb as they print themselves: 12.50 rather than a mantissa and a scale.

gdb loads this file by itself when the library was installed under its own prefix; elsewhere: source nxcore_printers.py.
Everything is read from memory and no function of the program is called, so core dumps show the same.

Enumerations and masks need the library's debug symbols, or a program compiled with -femit-class-debug-always (g++) or
-fno-limit-debug-info (clang++): compilers describe classes with virtual operations only inside the library otherwise. What
cannot be shown without them says so; of some values gdb itself says "<incomplete type>".
"""

import struct
import time

import gdb
import gdb.printing

ENUM_PAGE = 65536
NULL_TEXTS = {"unsigned int": (0xFFFFFFFF, 0xFFFFFFFE), "int": (0x7FFFFFFF, 0x7FFFFFFE),
              "unsigned long long": (0xFFFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFE),
              "unsigned long": (0xFFFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFE)}


NOT_INITIALISED = "<not initialised>"
NO_SYMBOLS = "<install libnxcore1-dbgsym>"


def read_bytes(address, size):
    """Bytes of the program."""
    return gdb.selected_inferior().read_memory(address, size).tobytes()


def read_word(address, size=8):
    """An unsigned number at an address of the program."""
    return int.from_bytes(read_bytes(address, size), "little")


def std_string(address):
    """Where the bytes of a std::string are, and how many.

    libstdc++ begins with a pointer and the size, and a short text follows them. libc++ begins with a byte that is twice
    the size of a short text, which follows; a long text begins with its odd capacity, the size and a pointer.
    """
    first, second = read_word(address), read_word(address + 8)
    if first == address + 16 or (first % 2 == 0 and first < 1 << 56 and second > 15):
        return first, second
    if first % 2:
        return read_word(address + 16), second
    return address + 1, first % 256 // 2


def printable(text):
    """Text that cannot steer a terminal."""
    return "".join(c if c.isprintable() else "".join("\\x%02X" % byte for byte in c.encode()) for c in text)


def enum_texts(number):
    """The address of a value's texts, which begin with a std::string; 0 if it has none."""
    # nxEnumTable: a pointer to pages; a page begins with a pointer to the texts of each value.
    pages = int(gdb.parse_and_eval("(unsigned long)_ZN11nxEnumTable6_pagesE"))
    page = read_word(pages + 8 * (number // ENUM_PAGE))
    texts = read_word(page + 8 * (number % ENUM_PAGE)) if page else 0
    if texts:
        return texts
    # nxListedTexts: the library's own values, which enter a page when the program looks for them.
    listed = int(gdb.parse_and_eval("(unsigned long)&_ZN13nxListedTexts13_forDebuggersE"))
    values, count, texts, size = (read_word(listed + 8 * i) for i in range(4))
    places = {value: i for i, (value,) in enumerate(struct.iter_unpack("I", read_bytes(values, 4 * count)))}
    return texts + size * places[number] if number in places and read_word(texts) else 0


def enum_identifier(number):
    """The registered short description; else the name of the constant; else the number."""
    try:
        texts = enum_texts(number)
        if texts:
            address, size = std_string(texts)
            return printable(read_bytes(address, min(size, 64)).decode("utf-8", "backslashreplace"))
    except (gdb.error, gdb.MemoryError):
        pass
    try:
        for field in gdb.lookup_type("nxEnumValue").fields():
            if field.enumval == number:
                return field.name
    except gdb.error:
        pass
    return "NOT_REGISTERED (%d)" % number


class DecimalPrinter:
    """nxDecimal: all its places, NULL or NO_CHANGE."""

    def __init__(self, value):
        number = value["_number"]
        self._mantissa, self._scale = int(number["mantissa"]), int(number["scale"])

    def to_string(self):
        if self._scale == 0x100:
            return "NULL"
        if self._scale == 0x200:
            return "NO_CHANGE"
        if not 0 <= self._scale <= 255:
            return NOT_INITIALISED
        digits = str(abs(self._mantissa)).rjust(self._scale + 1, "0")
        whole, fraction = digits[:len(digits) - self._scale], digits[len(digits) - self._scale:]
        return ("-" if self._mantissa < 0 else "") + whole + ("." + fraction if fraction else "")


class EnumPrinter:
    """Everything derived from nxEnum: its identifier."""

    def __init__(self, value):
        self._value = int(value["_value"])

    def to_string(self):
        return enum_identifier(self._value)


class MaskPrinter:
    """Bit masks: the names of the flags that are set."""

    def __init__(self, value):
        self._word, self._bits = int(value["_word"]), 8 * value["_word"].type.sizeof
        self._flags = {}
        try:
            flag_type = gdb.lookup_type(str(value.dynamic_type.strip_typedefs().unqualified()) + "::Flag")
            self._flags = {field.enumval & (2 ** self._bits - 1): field.name.split("::")[-1] for field in flag_type.fields()}
        except gdb.error:
            pass

    def to_string(self):
        if self._word >> (self._bits - 1) & 1:
            return "NULL"
        if self._word >> (self._bits - 2) & 1:
            return "NO_CHANGE"
        bits = [1 << index for index in range(self._bits) if self._word >> index & 1]
        return " | ".join(self._flags.get(bit, hex(bit)) for bit in bits) or "(no flag)"


NANOSECONDS_A_DAY = 86400 * 10 ** 9
MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()


def time_text(value):
    """The time of day of an nxTime, with as much of its fraction as it has; None for null."""
    nanoseconds = int(value["_nanoseconds"])
    if nanoseconds < 0:
        return None
    if nanoseconds >= NANOSECONDS_A_DAY:
        return NOT_INITIALISED
    seconds, fraction = divmod(nanoseconds, 10 ** 9)
    text = "%02d:%02d:%02d" % (seconds // 3600, seconds // 60 % 60, seconds % 60)
    for size, unit in ((3, 10 ** 6), (6, 10 ** 3), (9, 1)):
        if fraction and fraction % unit == 0:
            return text + ".%0*d" % (size, fraction // unit)
    return text


class DatePrinter:
    """nxDate: its number, yyyymmdd, or NULL."""

    def __init__(self, value):
        self._date = int(value["_isoDate"])

    def to_string(self):
        return "%08d" % self._date if self._date else "NULL"


class TimePrinter:
    """nxTime: 09:07:03.500, or NULL."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        return time_text(self._value) or "NULL"


class DateTimePrinter:
    """nxDateTime: 05 Mar 2024 09:07:03, a time of day alone, or NULL."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        text, date = time_text(self._value["_time"]), int(self._value["_date"]["_isoDate"])
        if text is None or not date:
            return text or "NULL"
        if text == NOT_INITIALISED or not 1 <= date // 100 % 100 <= 12:
            return NOT_INITIALISED
        return "%02d %s %04d %s" % (date % 100, MONTHS[date // 100 % 100 - 1], date // 10000, text)


class DateTimeSpanPrinter:
    """nxDateTimeSpan: P1DT12H, or NULL."""

    MAX_DAYS = 3652059

    def __init__(self, value):
        self._days, self._nanoseconds = int(value["_days"]), int(value["_nanoseconds"])

    def to_string(self):
        if self._days == -1 << 31:
            return "NULL"
        if abs(self._days) > self.MAX_DAYS or not 0 <= self._nanoseconds < NANOSECONDS_A_DAY:
            return NOT_INITIALISED
        total = self._days * NANOSECONDS_A_DAY + self._nanoseconds
        seconds, fraction = divmod(abs(total), 10 ** 9)
        parts = ((seconds // 3600 % 24, "H"), (seconds // 60 % 60, "M"))
        text = "".join("%d%s" % part for part in parts if part[0])
        if seconds % 60 or fraction or not total:
            text += "%d" % (seconds % 60) + (".%09d" % fraction).rstrip("0").rstrip(".") + "S"
        days = "%dD" % (seconds // 86400) if seconds >= 86400 else ""
        return "-" * (total < 0) + "P" + days + ("T" + text if text else "")


class MoneyPrinter:
    """nxMoney: its amount and currency, NULL or NO_CHANGE."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        amount = DecimalPrinter(self._value["_amount"]).to_string()
        currency = printable(self._value["_currency"].string(errors="backslashreplace"))
        return amount if amount in ("NULL", "NO_CHANGE", NOT_INITIALISED) else amount + " " + currency


class CurrencyPrinter:
    """nxCurrency: three letters, or NULL."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        return printable(self._value["_letters"]["_M_elems"].string(errors="backslashreplace")) or "NULL"


class RatioPrinter:
    """nxRatio: 3/2, a whole number, or NULL."""

    def __init__(self, value):
        self._terms = int(value["_numerator"]), int(value["_denominator"])

    def to_string(self):
        if self._terms[1] < 0:
            return NOT_INITIALISED
        if self._terms[1] < 2:
            return str(self._terms[0]) if self._terms[1] else "NULL"
        return "%d/%d" % self._terms


class ExchangeRatePrinter:
    """nxExchangeRate: 1 EUR = 1.0850 .. 1.0852 USD, or NULL."""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        base, quote = (CurrencyPrinter(self._value[name]).to_string() for name in ("_base", "_quote"))
        bid, ask = (DecimalPrinter(self._value[name]).to_string() for name in ("_bid", "_ask"))
        if base == "NULL":
            return base
        return "%d %s = %s .. %s %s" % (int(self._value["_unitCount"]), base, bid, ask, quote)


class TimeStampPrinter:
    """nxTimeStamp: its 24 characters, in the local time of the debugger."""

    def __init__(self, value):
        self._seconds, self._nanoseconds = int(value["_seconds"]), int(value["_nanoseconds"])

    def to_string(self):
        try:
            fields = time.localtime(self._seconds)
        except (OverflowError, OSError, ValueError):
            return "%d s + %d ns" % (self._seconds, self._nanoseconds)
        microseconds = self._nanoseconds % 10 ** 9 // 1000
        return "%02d%s%02d %02d:%02d:%02d.%03d.%03d" % (
            fields.tm_mday, MONTHS[fields.tm_mon - 1], fields.tm_year % 100, fields.tm_hour, fields.tm_min,
            fields.tm_sec, microseconds // 1000, microseconds % 1000)


class ValueWrapperPrinter:
    """nxValueWrapper: its number, NULL or NO_CHANGE."""

    def __init__(self, value):
        self._value = int(value["_value"])
        wrapper = value.type.strip_typedefs().unqualified()
        try:
            self._markers = (int(wrapper.template_argument(1)), int(wrapper.template_argument(2)))
        except (gdb.error, RuntimeError):
            self._markers = NULL_TEXTS.get(str(value["_value"].type.strip_typedefs()), (None, None))

    def to_string(self):
        if self._value in self._markers:
            return ("NULL", "NO_CHANGE")[self._markers.index(self._value)]
        return str(self._value)


class DoubleValueWrapperPrinter:
    """nxDoubleValueWrapper: its number, NULL or NO_CHANGE."""

    MARKERS = {4503599627370495.0: "NULL", 4503599627370494.0: "NO_CHANGE"}

    def __init__(self, value):
        self._value = float(value["_value"])

    def to_string(self):
        return self.MARKERS.get(self._value, repr(self._value))


class StringValuePrinter:
    """nxStringValue: its text in quotes, NULL or NO_CHANGE."""

    def __init__(self, value):
        status = value["_status"]
        self._code = int(status["_value"] if status.type.strip_typedefs().code == gdb.TYPE_CODE_STRUCT else status)
        self._text = value["_text"].address

    def to_string(self):
        if self._code in (242, 243):
            return "NULL" if self._code == 242 else "NO_CHANGE"
        if self._code != 241:
            return NOT_INITIALISED
        if self._text is None:
            return "<not in memory>"
        address, size = std_string(int(self._text))
        return gdb.Value(address).cast(gdb.lookup_type("char").pointer()).lazy_string(length=size)


class NoSymbolsPrinter:
    """Stands for a value that the debugging information does not describe."""

    def to_string(self):
        return NO_SYMBOLS


PRINTERS = {"nxDecimal": DecimalPrinter, "nxTimeStamp": TimeStampPrinter, "nxDoubleValueWrapper": DoubleValueWrapperPrinter,
            "nxStringValue": StringValuePrinter, "nxDate": DatePrinter, "nxTime": TimePrinter, "nxDateTime": DateTimePrinter,
            "nxDateTimeSpan": DateTimeSpanPrinter, "nxMoney": MoneyPrinter, "nxCurrency": CurrencyPrinter,
            "nxRatio": RatioPrinter, "nxExchangeRate": ExchangeRatePrinter}
BASES = {"nxEnum": EnumPrinter, "nxBitMask": MaskPrinter, "nxBitMask64": MaskPrinter}


def base_printer(type_):
    """The printer of the type or of the base that it derives from, or None."""
    if type_.code != gdb.TYPE_CODE_STRUCT:
        return None
    if type_.tag in BASES:
        return BASES[type_.tag]
    for field in type_.fields():
        found = base_printer(field.type.strip_typedefs()) if field.is_base_class else None
        if found:
            return found
    return None


def find_printer(type_):
    """The printer of values of a type, or None."""
    if type_.tag is None:
        return None
    if type_.tag.startswith("nxValueWrapper<"):
        return ValueWrapperPrinter
    return PRINTERS.get(type_.tag) or base_printer(type_)


def lookup(value):
    """gdb asks this for every value that it shows."""
    if value.type.strip_typedefs().code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
        value = value.referenced_value()
    printer = find_printer(value.type.strip_typedefs().unqualified())
    try:
        return printer(value) if printer else None
    except gdb.MemoryError:
        raise
    except gdb.error:
        return NoSymbolsPrinter()


gdb.pretty_printers.append(lookup)
