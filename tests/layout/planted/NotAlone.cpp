#include "NotAlone.h"
