// Defines the identifiers that the generated header declares.
#include <initguid.h>

#include "norvane_com.h"
