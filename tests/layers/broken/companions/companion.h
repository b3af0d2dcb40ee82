#include <string>
#include <tools/tool.h>

#include "high.h"
#include "mox_xmlApi/high/high.h"
#include "mox_xmlApi/high/other.h"
