// In a layer, and keeps to it.
#include "mox_xmlApi/high/high.h"
