// The curves' numbers are those of libcrypto.
#include "keys/za_ext_curves.hpp"

#include "key_files.hpp"

#include <gtest/gtest.h>
#include <memory>
#include <openssl/ec.h>
#include <openssl/obj_mac.h>
#include <openssl/objects.h>

using namespace za::test;
using za::Bytes;
using za::keys::find_curve;

namespace {

Octets oid_of(const char *dotted) {
    const std::unique_ptr<ASN1_OBJECT, decltype(&ASN1_OBJECT_free)> object(OBJ_txt2obj(dotted, 1),
                                                                           ASN1_OBJECT_free);
    const uint8_t *content = OBJ_get0_data(object.get());
    return Octets(content, content + OBJ_length(object.get()));
}

std::string hex_of(const BIGNUM *number) {
    Octets octets(32);
    EXPECT_EQ(BN_bn2binpad(number, octets.data(), 32), 32);
    return to_hex(octets);
}

void expect_curve(const ZACERT_EccCurve &curve, int nid) {
    const std::unique_ptr<EC_GROUP, decltype(&EC_GROUP_free)> group(EC_GROUP_new_by_curve_name(nid),
                                                                    EC_GROUP_free);
    const std::unique_ptr<BN_CTX, decltype(&BN_CTX_free)> work(BN_CTX_new(), BN_CTX_free);
    const std::unique_ptr<BIGNUM, decltype(&BN_free)> first(BN_new(), BN_free);
    const std::unique_ptr<BIGNUM, decltype(&BN_free)> second(BN_new(), BN_free);
    const std::unique_ptr<BIGNUM, decltype(&BN_free)> third(BN_new(), BN_free);
    EC_GROUP_get_curve(group.get(), first.get(), second.get(), third.get(), work.get());
    EXPECT_EQ(to_hex(curve.p), hex_of(first.get()));
    EXPECT_EQ(to_hex(curve.a), hex_of(second.get()));
    EXPECT_EQ(to_hex(curve.b), hex_of(third.get()));
    EXPECT_EQ(curve.len1, BN_num_bits(first.get()));
    EC_POINT_get_affine_coordinates(group.get(), EC_GROUP_get0_generator(group.get()), first.get(),
                                    second.get(), work.get());
    EXPECT_EQ(to_hex(curve.gx), hex_of(first.get()));
    EXPECT_EQ(to_hex(curve.gy), hex_of(second.get()));
    EXPECT_EQ(to_hex(curve.n), hex_of(EC_GROUP_get0_order(group.get())));
    EXPECT_EQ(curve.len2, EC_GROUP_order_bits(group.get()));
}

bool has_domain(const ZACERT_EccCurve &curve) {
    const auto *octets = reinterpret_cast<const uint8_t *>(&curve);
    return std::any_of(octets, octets + 192, [](uint8_t x) { return x != 0; });
}

TEST(Curves, KnownByIdentifierWithTheNumbersOfLibcrypto) {
    const std::pair<const char *, int> rows[] = {{"1.2.840.10045.3.1.7", NID_X9_62_prime256v1},
                                                 {"1.2.156.10197.1.301", NID_sm2},
                                                 {"1.2.156.10197.301", NID_sm2}};
    for (const auto &[oid, nid] : rows) {
        SCOPED_TRACE(oid);
        ZACERT_EccCurve curve;
        EXPECT_TRUE(find_curve(oid_of(oid), curve));
        expect_curve(curve, nid);
    }
}

TEST(Curves, KnownByIdentifierAloneOrNotAtAll) {
    const std::pair<const char *, bool> rows[] = {
        {"1.2.156.197.10045.3.1.1", true}, {"1.2.156.197.10045.3.1.2", true},
        {"1.2.156.197.10045.3.1.3", true}, {"1.2.156.197.10045.3.1.4", true},
        {"1.2.156.197.10045.3.1.5", true}, {"1.2.156.197.10045.3.1.6", true},
        {"1.2.156.197.1.1000.8", true},    {"1.2.156.197.10045.3.1.7", false},
        {"1.3.132.0.10", false},           {"1.2.840.10045.3.1", false}};
    for (const auto &[oid, known] : rows) {
        ZACERT_EccCurve curve;
        EXPECT_EQ(find_curve(oid_of(oid), curve), known) << oid;
        EXPECT_FALSE(has_domain(curve)) << oid;
        EXPECT_EQ(curve.len1, 256) << oid;
        EXPECT_EQ(curve.len2, 256) << oid;
    }
}

TEST(Curves, IdentifierOfDomainParameters) {
    for (const char *oid : {"1.2.840.10045.3.1.7", "1.2.156.10197.1.301"}) {
        ZACERT_EccCurve curve;
        find_curve(oid_of(oid), curve);
        EXPECT_TRUE(za::equal(za::keys::find_curve_oid(curve), oid_of(oid)));
        curve.n[31] ^= 1;
        EXPECT_TRUE(za::keys::find_curve_oid(curve).empty());
    }
    EXPECT_TRUE(za::keys::find_curve_oid(za::keys::unknown_curve()).empty());
}

// The ECParameters of a SubjectPublicKeyInfo.
Octets explicit_parameters(const char *file) {
    return children_of(children_of(key_file(file))[0])[1];
}

bool read(const Octets &parameters, ZACERT_EccCurve &curve) {
    return za::keys::read_explicit_curve(za::asn1::Element(Bytes(parameters)), curve);
}

TEST(Curves, ExplicitParametersOfOpenssl) {
    ZACERT_EccCurve curve;
    ASSERT_TRUE(read(explicit_parameters("spki_p256_explicit.der"), curve));
    expect_curve(curve, NID_X9_62_prime256v1);
    ASSERT_TRUE(read(explicit_parameters("spki_sm2_explicit.der"), curve));
    expect_curve(curve, NID_sm2);
}

TEST(Curves, ExplicitParametersThatDoNotFitAreLeftOut) {
    const std::vector<Octets> good = children_of(explicit_parameters("spki_sm2_explicit.der"));
    auto with = [&](size_t place, const Octets &field) {
        std::vector<Octets> fields = good;
        fields[place] = field;
        return sequence(fields);
    };
    const Octets prime_field = children_of(good[1])[0];
    const Octets binary_field = from_hex("06 07 2A 86 48 CE 3D 01 02");
    const Octets large = element(2, Octets(33, 0x11));
    const Octets one = from_hex("02 01 05");
    const std::vector<Octets> rows = {
        {},
        sequence({}),
        with(1, sequence({binary_field, one})),
        with(1, sequence({prime_field, large})),
        with(1, sequence({prime_field})),
        with(2, sequence({from_hex("04 01 05")})),
        with(3, from_hex("04 01 02")),
        with(4, large),
        sequence({good.begin(), good.begin() + 4}),
    };
    for (const Octets &row : rows) {
        ZACERT_EccCurve curve = za::keys::unknown_curve();
        EXPECT_FALSE(read(row, curve)) << to_hex(row);
        EXPECT_FALSE(has_domain(curve)) << to_hex(row);
    }
    // Numbers stand at the end of their fields, and the cofactor may be missing.
    std::vector<Octets> fields(good.begin(), good.begin() + 5);
    fields[2] = sequence({from_hex("04 01 05"), from_hex("04 02 06 07")});
    ZACERT_EccCurve curve;
    ASSERT_TRUE(read(sequence(fields), curve));
    EXPECT_EQ(curve.a[31], 5);
    EXPECT_EQ(curve.a[0], 0);
    EXPECT_EQ(curve.b[30], 6);
}

}  // namespace
