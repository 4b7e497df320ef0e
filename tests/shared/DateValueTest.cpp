#include "shared/DateValue.h"
#include "support/TestSupport.h"

TEST(DateValue, Smoke) { EXPECT_EQ(DateSerial(1899, 12, 30), 0.0); }
