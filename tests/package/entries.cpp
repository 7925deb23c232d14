#include "entries.c"
