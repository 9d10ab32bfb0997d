// The module's own translation unit. Its exports come from the libraries linked in whole.
#include "documents/base64_coder.h"
#include "documents/xml.h"
