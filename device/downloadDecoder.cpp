#include "device/downloadDecoder.h"
