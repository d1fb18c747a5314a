#include "schema/bind/Binding.h"
