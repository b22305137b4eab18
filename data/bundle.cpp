#include "data/bundle.h"
