#include "mox_xmlApi/low/low.h"
#include "companions/companion.h"
