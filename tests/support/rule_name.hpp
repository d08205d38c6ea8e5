// Names the rows of a table test by the rule that each row tests.
#pragma once

#include <string>

#include <gtest/gtest.h>

namespace textio::testing_support {

struct ByRule {
  template <typename Row>
  std::string operator()(const testing::TestParamInfo<Row>& info) const {
    return info.param.rule;
  }
};

}  // namespace textio::testing_support
