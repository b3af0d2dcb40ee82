#include "mox_xmlApi/low/low.h"
