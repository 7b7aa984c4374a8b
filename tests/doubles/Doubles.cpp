// Every double is header-only; this compiles them once on their own.
#include "TestServices.h"
