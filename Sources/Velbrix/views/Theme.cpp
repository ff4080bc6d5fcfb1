#include "views/Theme.h"
