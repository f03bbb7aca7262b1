#include "runtime/trace.hpp"

#include <algorithm>
#include <array>

namespace za {
namespace {

struct ConditionText {
    Status status;
    const char *text;
};

// One search in a log finds every place that detects the same condition.
constexpr std::array kConditionTexts{
    ConditionText{Status::memory, "------>ZAPR_Malloc"},
    ConditionText{Status::length, "------>ZACERT_LengthErr"},
    ConditionText{Status::length_not_equal, "------>ZACERT_LengthNotEqualErr"},
    ConditionText{Status::time_format, "------>ZACERT_TimeFormatErr"},
    ConditionText{Status::invalid_time_end, "------>ZACERT_InvalidTimeEndErr"},
    ConditionText{Status::tag, "------>ZACERT_TagErr"},
    ConditionText{Status::invalid_signature_length, "------>ZACERT_InvalidSignatureLenErr"},
    ConditionText{Status::general, "------>ZACERT_GeneralErr"},
    ConditionText{Status::certificate_not_end, "------>ZACERT_CertNotEndErr"},
    ConditionText{Status::attribute_not_supported, "------>ZACERT_AttributeNotSupportErr"},
    ConditionText{Status::crl_not_end, "------>ZACERT_CrlNotEndErr"},
    ConditionText{Status::csr_not_end, "------>ZACERT_CsrNotEndErr"},
    ConditionText{Status::item_missing, "------>ZACERT_ItemMissingErr"},
    ConditionText{Status::attribute_already_set, "------>ZACERT_AttributeAlreadySet"},
    ConditionText{Status::invalid_time, "------>ZACERT_InvalidTimeErr"},
    ConditionText{Status::dn_not_equal, "------>ZACERT_DnNotEqualErr"},
    ConditionText{Status::time_out_of_range, "------>ZACERT_TimeOutRangeErr"},
    ConditionText{Status::invalid_signature_algorithm, "------>ZACERT_InvalidSignatureAlgErr"},
    ConditionText{Status::sign_function_not_set, "------>ZACertSignFunc Not Set"},
    ConditionText{Status::private_key, "------>ZACERT_PrivateKeyErr"},
    ConditionText{Status::invalid_item, "------>ZACERT_InvalidItem"},
    ConditionText{Status::type, "------>ZACERT_TypeErr"},
    ConditionText{Status::indefinite, "------>ZACERT_IndefiniteErr"},
    ConditionText{Status::rsa_public_key, "------>ZACERT_RsaPublicKeyErr"},
    ConditionText{Status::digest, "------>ZACERT_DigestedErr"},
    ConditionText{Status::crypt, "------>ZACERT_CryptErr  Err"},
    ConditionText{Status::rsa_private_key, "------>ZACERT_RsaPrivateKeyErr"},
    ConditionText{Status::verify, "------>ZACERT_VerifyErr"},
    ConditionText{Status::invalid_algorithm, "------>ZACERT_IvaliedAlgo"},
};
static_assert(std::ranges::is_sorted(kConditionTexts, {}, &ConditionText::status));

}  // namespace

Status TraceSource::fail(Status status, uint32_t line) const noexcept {
    const auto row = std::ranges::lower_bound(kConditionTexts, status, {}, &ConditionText::status);
    const bool found = row != kConditionTexts.end() && row->status == status;
    const std::string_view text = found ? row->text : "------>";
    const bool named = text.starts_with("------>ZACERT_");
    const std::string_view more = status == Status::memory ? style_.memory_arrow
                                  : named                  ? style_.longer_arrow
                                                           : std::string_view();
    return fail(status, {more, text}, line);
}

}  // namespace za
