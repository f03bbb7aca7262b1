// The pieces of responses, as records of the interface, between them and DER.
#pragma once

#include "asn1/za_asn2_builder.hpp"
#include "asn1/za_asn2_fields.hpp"
#include "names/za_low_name.hpp"
#include "runtime/callback.hpp"
#include "runtime/long_trace.hpp"

namespace za::ocsp {

constexpr const char *kInvalidInput = "------------>The input is invalid item";

constexpr uint8_t context_tag(uint8_t number) {
    return static_cast<uint8_t>(0xA0 | number);
}

// Releases what a record owns and makes it empty.
void clear(ZA_OCSP_EXTENSION &record);
void clear(ZA_OCSP_BASICRESPONSE &record);
void clear(ZA_OCSP_CERTSTATUS &record);

// A copy in the place of what the record had, which is released.
Status replace_value(Anybuf &record, Bytes bytes);

// A record of the library's own.
template <class Record>
class Owned {
  public:
    Owned() = default;
    Owned(Owned &&other) noexcept { std::swap(record_, other.record_); }
    Owned &operator=(Owned &&other) noexcept {
        std::swap(record_, other.record_);
        return *this;
    }
    Owned(const Owned &) = delete;
    Owned &operator=(const Owned &) = delete;
    ~Owned() { clear(record_); }

    Record &operator*() { return record_; }
    const Record &operator*() const { return record_; }
    Record *operator->() { return &record_; }
    const Record *operator->() const { return &record_; }

  private:
    Record record_{};
};

// An exported function that works on a record. `body` writes the lines around itself; missing
// arguments have them too.
template <class Body>
uint32_t with_record(const TraceSource &trace, const void *record, const void *other,
                     const Body &body, const char *name = __builtin_FUNCTION(),
                     uint32_t line = __builtin_LINE()) {
    if (record == nullptr || other == nullptr) {
        const auto refuse = [&] { return trace.fail(Status::invalid_item, kInvalidInput, line); };
        return trace.exported(refuse, name, line);
    }
    return trace.unannounced(body);
}

// By their flag, and by the tag that they have.
Status write_time(const TraceSource &trace, const ZA_OCSP_TIME &time, asn1::Builder &out);
Status read_time(const TraceSource &trace, const asn1::Element &in, ZA_OCSP_TIME &out);

// The SEQUENCE that an element is.
Status open_sequence(const TraceSource &trace, const asn1::Element &in, asn1::Children &out);

// The next field when it has this context tag, and the one element inside. No octets: it has not.
Status take_explicit(const TraceSource &trace, asn1::Children &fields, uint8_t identifier,
                     asn1::Element &out);

// OBJECT IDENTIFIER: its content octets; `missing` is the line of one that is not there.
Status take_object_id(const TraceSource &trace, asn1::Children &fields, Bytes &out,
                      const char *missing = nullptr);

// OCTET STRING
Status take_octets(const TraceSource &trace, asn1::Children &fields, Bytes &out,
                   const char *missing = nullptr);

// What a caller's hash function makes of octets. 108: more than it had room for, or nothing.
Status hash(const TraceSource &trace, const CryptSlot &function, Bytes in, size_t room,
            const char *failed, Secret &out);

// What a signature is made with, and the lines of those who make it.
struct Signer {
    Bytes algorithm;
    const CryptSlot &function;
    bool has_certificates;
    Bytes certificates;
    const char *failed;
};

// algorithm OBJECT IDENTIFIER, signature OCTET STRING, certs [0] EXPLICIT SEQUENCE OF OPTIONAL. The
// signature comes into `signature`, too.
Status write_signature(const TraceSource &trace, const Signer &signer, Bytes to_sign,
                       Secret &signature, asn1::Builder &out);

struct Signature {
    Bytes algorithm;
    Bytes signature;
    bool has_certificates = false;
    Bytes certificates;
};

// The same read, as views: the last fields of their structure.
Status read_signature(const TraceSource &trace, asn1::Children &fields, Signature &out);

// ZI_EncodeOCSPSignature
Status write_signature_block(const Signer &signer, Bytes to_sign, Secret &signature,
                             asn1::Builder &out);

// ZI_EncodeResponseId. `function` is the one of the record.
Status write_responder_id(ZA_OCSP_RESPONDERID &record, const CryptSlot &function,
                          asn1::Builder &out);

// ZI_DecodeResponseId. The entries of the name come into `name`.
Status read_responder_id(const asn1::Element &in, ZA_OCSP_RESPONDERID &record,
                         names::NameList &name);

// The entries as the interface has them, in place of those that the record had.
Status hand_over(const names::NameList &name, ZI_Name &record);

// Reads what a name stands in. The record gets the name whatever comes of the rest, as it does
// everything else that was read.
template <class Read>
Status read_with_name(ZI_Name &record, const Read &read) {
    names::NameList name;
    const Status status = read(name);
    ZA_PASS(name.empty() ? Status::ok : hand_over(name, record));
    return status;
}

// CertStatus ::= CHOICE { good [0] IMPLICIT NULL, revoked [1] IMPLICIT RevokedInfo,
//     unknown [2] IMPLICIT OCTET STRING }: what is unknown has octets here and NULL elsewhere
constexpr uint8_t kGood = 0x80;
constexpr uint8_t kRevoked = 0xA1;
constexpr uint8_t kUnknown = 0x82;

// ZI_DecodeCertStatus
Status read_cert_status(const asn1::Element &in, ZA_OCSP_CERTSTATUS &record);

// ZI_EncodeOCSPExtension, ZI_DecodeOCSPExtension
Status write_extensions(const ZA_OCSP_EXTENSION &record, asn1::Builder &out);
Status read_extensions(const asn1::Element &in, ZA_OCSP_EXTENSION &record);

// ZI_EncodeOCSPCrlId, ZI_DecodeOCSPCrlId
Status write_crl_id(const ZA_OCSP_CRLID &record, asn1::Builder &out);
Status read_crl_id(const asn1::Element &in, ZA_OCSP_CRLID &record);

// ZI_EncodeResponseData, ZI_DecodeResponseData
Status write_response_data(ZA_OCSP_RESPONSEDATA &record, const CryptSlot &function,
                           asn1::Builder &out);
Status read_response_data(const asn1::Element &in, ZA_OCSP_RESPONSEDATA &record,
                          names::NameList &name);

// ZI_EncodeBasicResponse, ZI_DecodeBasicResponse
Status write_basic_response(ZA_OCSP_BASICRESPONSE &record, const CryptSlot &hash_function,
                            const CryptSlot &sign_function, asn1::Builder &out);
Status read_basic_response(const asn1::Element &in, ZA_OCSP_BASICRESPONSE &record,
                           names::NameList &name);

}  // namespace za::ocsp
