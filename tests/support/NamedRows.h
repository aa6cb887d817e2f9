#pragma once

#include <gtest/gtest.h>

#include <string>

namespace vellumine::test {

/// The name function of a table of cases: each row has a `name`.
struct RowName {
    template <typename Row> std::string operator()(const testing::TestParamInfo<Row>& row) const
    {
        return std::string(row.param.name);
    }
};

} // namespace vellumine::test
