#pragma once

#include "app/TestProgram.h"
#include "support/bus/OnPrivateBus.h"

namespace vellumine::test {

/// The program in a session with a bus of the test's own.
class ProgramOnPrivateBus : public OnPrivateBus, protected TestProgram {
protected:
    void SetUp() override
    {
        OnPrivateBus::SetUp();
        if (!IsSkipped() && !HasFatalFailure()) {
            m_bus = client();
        }
    }
};

} // namespace vellumine::test
