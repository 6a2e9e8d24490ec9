// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxByteArray.h"

void nxByteArray::Append(const unsigned char* data, std::size_t size)
{
    _bytes.insert(_bytes.end(), data, data + size);
}
