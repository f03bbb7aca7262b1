// What certificates, CRLs and requests have in common: names, times, keys, the state of extensions.
#pragma once

#include "asn1/za_asn2_time.hpp"
#include "names/za_low_name.hpp"
#include "runtime/field.hpp"
#include "runtime/list.hpp"

#include <array>

namespace za::cert {

// Octets that the fields of a context refer to: they stay until the context goes.
class Kept {
  public:
    // Copies octets into the context; the trace's owner names the family of a failure.
    Status keep(const TraceSource &trace, Bytes octets, Bytes &out);

  private:
    List<Octets> blocks_;
};

constexpr size_t kStringTypes = 256;

struct Name {
    Field der;
    names::NameList entries;
    Field text;  // made on first request
    bool text_made = false;
    Field joined_units;  // what the last request for organisational units got
    std::array<uint8_t, kStringTypes> string_types{};
};

// A time remembers which DER type it came from or is to be written as. One that was decoded keeps
// its text's fields until somebody asks for the seconds.
class Time {
  public:
    void set(int32_t utc);
    void decoded(const asn1::TimeFields &fields, bool is_utc);

    // The seconds of a UTCTime; 0 for a GeneralizedTime, which readers of the attribute rely on.
    Status utc(int32_t &out) const;

    // Of whichever type it is. A time that was never set is a GeneralizedTime of 0.
    Status seconds(int32_t &out) const;
    bool is_utc() const { return is_utc_; }

  private:
    bool is_utc_ = false;
    bool is_decoded_ = false;
    int32_t seconds_ = 0;
    asn1::TimeFields fields_;
};

// Key kinds: how the parameters of the key algorithm are written. 1 to 7 stand for an INTEGER.
constexpr uint32_t kExplicitCurve = 11;
constexpr uint32_t kNamedCurve = 12;

struct PublicKey {
    Field algorithm;
    Field parameters;
    Field bits;      // what attribute 54 holds
    Field raw_bits;  // the BIT STRING as it stood
    uint32_t kind = 0;
};

// `set` asks the encoder to write the extension; `decoded` says that it was read, which the first
// occurrence in a certificate does for good.
struct ExtensionState {
    bool set = false;
    bool decoded = false;
    uint8_t critical = 0;

    bool present() const { return set || decoded; }
};

struct KeyIdentifier {
    ExtensionState state;
    Field value;
};

struct AuthorityKeyIdentifier {
    ExtensionState state;
    Field value;
    names::NameList issuer;
    Field serial;
};

}  // namespace za::cert
