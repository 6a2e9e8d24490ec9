// A library that does nothing when it is loaded.
int NothingToDo() { return 0; }
