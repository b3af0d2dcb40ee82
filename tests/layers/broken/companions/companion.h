#include <string>
#include "mox_xmlApi/high/high.h"
#include "mox_xmlApi/high/other.h"
#include "high.h"
#include <tools/tool.h>
