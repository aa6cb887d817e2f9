#pragma once

// The same of the tests of the windows.

#include "Quick.h"
#include "Tests.h"

#include <QSignalSpy>
