// The helper is all in its header; this file gives its meta-object a home.
#include "tools/widgets/connecthelper.h"
