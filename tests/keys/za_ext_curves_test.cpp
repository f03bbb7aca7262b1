#include "keys/za_ext_curves.hpp"

#include "key_files.hpp"
#include "names/za_low_oid.hpp"

using namespace za::test;
using za::keys::find_curve;

namespace {

Octets oid_of(const std::string &dotted) {
    za::Octets oid;
    EXPECT_EQ(za::names::oid_from_text(za::bytes_of(dotted), oid), za::Status::ok);
    return Octets(oid.bytes().begin(), oid.bytes().end());
}

// The ECParameters that libcrypto wrote into a SubjectPublicKeyInfo.
std::vector<Octets> explicit_parameters(const char *file) {
    return children_of(children_of(children_of(key_file(file))[0])[1]);
}

// p, a, b, the base point and n as the record has them, and twice 256 bits.
Octets record_of(const std::vector<Octets> &parameters) {
    const auto last = [](const Octets &octets, long count) {
        return Octets(octets.end() - count, octets.end());
    };
    const uint16_t bits[] = {256, 256};
    const std::vector<Octets> coefficients = children_of(parameters[2]);
    return join({last(parameters[1], 32), last(coefficients[0], 32), last(coefficients[1], 32),
                 last(parameters[3], 64), last(parameters[4], 32), octets_of(bits)});
}

bool read(const Octets &parameters, ZACERT_EccCurve &curve) {
    return za::keys::read_explicit_curve(za::asn1::Element(za::Bytes(parameters)), curve);
}

TEST(Curves, AreKnownWithTheNumbersOfLibcrypto) {
    const std::tuple<const char *, const char *, const char *> rows[] = {
        {"1.2.840.10045.3.1.7", "1.2.840.10045.3.1.7", "spki_p256_explicit.der"},
        {"1.2.156.10197.1.301", "1.2.156.10197.1.301", "spki_sm2_explicit.der"},
        {"1.2.156.10197.301", "1.2.156.10197.1.301", "spki_sm2_explicit.der"}};
    for (const auto &[oid, written, file] : rows) {
        SCOPED_TRACE(oid);
        const std::vector<Octets> parameters = explicit_parameters(file);
        auto curve = marked<ZACERT_EccCurve>();
        EXPECT_TRUE(read(sequence(parameters), curve));
        EXPECT_EQ(octets_of(curve), record_of(parameters));
        EXPECT_TRUE(find_curve(oid_of(oid), curve));
        EXPECT_EQ(octets_of(curve), record_of(parameters));
        EXPECT_TRUE(za::equal(za::keys::find_curve_oid(curve), oid_of(written)));
        curve.n[31] ^= 1;
        EXPECT_TRUE(za::keys::find_curve_oid(curve).empty());
    }
    EXPECT_TRUE(za::keys::find_curve_oid(za::keys::unknown_curve()).empty());
}

TEST(Curves, KnownByIdentifierAloneOrNotAtAll) {
    const std::string arc = "1.2.156.197.10045.3.1.";
    const std::pair<std::string, bool> rows[] = {
        {arc + "1", true},      {arc + "2", true},
        {arc + "3", true},      {arc + "4", true},
        {arc + "5", true},      {arc + "6", true},
        {arc + "7", false},     {"1.2.156.197.1.1000.8", true},
        {"1.3.132.0.10", false}};
    const uint16_t bits[] = {256, 256};
    for (const auto &[oid, known] : rows) {
        ZACERT_EccCurve curve;
        EXPECT_EQ(find_curve(oid_of(oid), curve), known) << oid;
        EXPECT_EQ(octets_of(curve), join({Octets(192, 0), octets_of(bits)})) << oid;
    }
}

TEST(Curves, ExplicitNumbersStandAtTheEndAndTheCofactorMayBeMissing) {
    std::vector<Octets> parameters = explicit_parameters("spki_sm2_explicit.der");
    parameters[2] = from_hex("30(04(05) 04(0607))");
    ZACERT_EccCurve curve;
    ASSERT_TRUE(read(first(parameters, 5), curve));
    EXPECT_EQ(join({octets_of(curve.a), octets_of(curve.b)}), from_hex("00*31 05 00*30 0607"));
}

TEST(Curves, ExplicitParametersThatDoNotFitAreLeftOut) {
    for (const auto &row : rows_of("keys/curves_left_out.txt")) {
        auto curve = marked<ZACERT_EccCurve>();
        EXPECT_FALSE(read(octets_of_cell(row.at(1)), curve)) << row.at(0);
        EXPECT_EQ(octets_of(curve), octets_of(marked<ZACERT_EccCurve>())) << row.at(0);
    }
}

}  // namespace
