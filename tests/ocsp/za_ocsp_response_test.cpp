#include "ocsp/za_ocsp_support.hpp"

namespace za::test {
namespace {

using namespace test::ocsp;

TEST(OcspResponse, StepsEndAsWritten) {
    expect_steps(kResponse, "ocsp/response");
}

TEST(OcspResponse, RowsDecodeAsWritten) {
    expect_contexts_decoded(kResponse, "ocsp/decode/response");
}

TEST(OcspResponse, MemoryThatRunsOutHasALineOfItsOwn) {
    void *context = nullptr;
    const TraceRecord trace;
    fail_allocation(1);
    EXPECT_EQ(ZA_OCSP_CreateEncodeResponse(&context), 100u);
    EXPECT_EQ(trace.failures(), Trail{"------------->ZAPR_Malloc"});
}

TEST(OcspResponse, ReservedFunctionsSucceed) {
    EXPECT_EQ(ZA_OCSP_SetResponsePrivateAttribute() + ZA_OCSP_GetResponsePrivateAttribute(), 0u);
    EXPECT_EQ(ZA_OCSP_SetRequestPrivateAttribute() + ZA_OCSP_GetRequestPrivateAttribute(), 0u);
}

}  // namespace
}  // namespace za::test
