#pragma once

// The same of the tests.

#include "Standard.h"

#include <gtest/gtest.h>
