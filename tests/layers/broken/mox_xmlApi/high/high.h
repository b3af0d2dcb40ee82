#include "companions/companion.h"
#include "mox_xmlApi/low/low.h"
