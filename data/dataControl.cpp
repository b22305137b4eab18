#include "data/dataControl.h"
