// SPDX-License-Identifier: Apache-2.0
// A library that does nothing when it is loaded.
int NothingToDo() { return 0; }
