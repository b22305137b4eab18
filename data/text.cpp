#include "data/text.h"
