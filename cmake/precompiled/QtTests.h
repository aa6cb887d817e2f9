#pragma once

// The same of the tests of what works with Qt.

#include "Qt.h"
#include "Tests.h"
