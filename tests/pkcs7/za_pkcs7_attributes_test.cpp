#include "pkcs7/za_pkcs7_DigestedData.hpp"
#include "pkcs7/za_pkcs7_EncryptedData.hpp"
#include "pkcs7/za_pkcs7_EnvelopedData.hpp"
#include "pkcs7/za_pkcs7_SignedAndEnvelopedData.hpp"
#include "pkcs7/za_pkcs7_SignedData.hpp"
#include "support/attribute_page.hpp"

namespace za::test {
namespace {

TEST(Pkcs7Attributes, AreThoseOfThePage) {
    expect_page_tells("Attributes of a PKCS#7 signer", pkcs7::signer_attributes());
    expect_page_tells("Attributes of a PKCS#7 recipient", pkcs7::recipient_attributes());
    expect_page_tells("Attributes of PKCS#7 encrypted content", pkcs7::encrypted_attributes());
    expect_page_tells("Attributes of signedData", pkcs7::signed_data_attributes());
    expect_page_tells("Attributes of signedAndEnvelopedData",
                      pkcs7::signed_and_enveloped_attributes());
    expect_page_tells("Attributes of envelopedData", pkcs7::enveloped_attributes());
    expect_page_tells("Attributes of encryptedData", pkcs7::encrypted_data_attributes());
    expect_page_tells("Attributes of digestedData", pkcs7::digested_attributes());
}

}  // namespace
}  // namespace za::test
