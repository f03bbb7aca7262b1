// Every function of cryptography called by rows: the types of its arguments tell what its cells
// are.
#pragma once

#include <zacert.h>

#include "support/bytes.hpp"
#include "support/rows.hpp"

#include <algorithm>
#include <deque>
#include <functional>
#include <tuple>
#include <type_traits>
#include <utility>

namespace za::test {

// An RSA record of a key file. "rsa1024 516+256": with 256 octets zeroed from the 516th on.
template <class Record>
Record rsa_record(const std::string &cell) {
    const Row words = split(cell, ' ');
    const Octets der = data_file("keys/" + words.at(0) + ".der");
    ZA_RSAPrivateKey key{};  // a file that is not read leaves no key
    ZA_Decode_PrivateKey(&key, der.data(), int32_t(der.size()));
    Octets octets = join({Octets(4), octets_of(key)});
    for (size_t i = 1; i < words.size(); ++i) {
        const Row range = split(words[i], '+');
        std::fill_n(octets.begin() + number_of(range.at(0)), number_of(range.at(1)), 0);
    }
    Record record;
    std::copy_n(octets.begin(), sizeof record, reinterpret_cast<uint8_t *>(&record));
    return record;
}

// The arguments of one call, taken from its cells in order. Octets and the length behind them are
// one cell: hex, or "NULL"; "00 @5" announces 5 octets. Records are given as
// "rsa1024", "digest 9", "hmac 7 KEY", "pbe OID PASSWORD SALT ITERATIONS" or "NULL".
class CallArguments {
  public:
    CallArguments(const Row &cells, uint8_t *out, uint32_t *out_len)
        : cells_(cells), out_(out), out_len_(out_len) {}

    template <class T>
    T take() {
        if constexpr (std::is_same_v<T, const uint8_t *>) {
            return octets();
        } else if constexpr (std::is_same_v<T, uint8_t *>) {
            return out_;
        } else if constexpr (std::is_same_v<T, uint32_t *>) {
            return out_len_;
        } else if constexpr (std::is_same_v<T, void *>) {
            return context();
        } else if constexpr (std::is_pointer_v<T>) {
            return record<std::remove_const_t<std::remove_pointer_t<T>>>(next());
        } else {
            last_ = std::exchange(has_len_, false) ? len_ : number_of(next());
            return static_cast<T>(last_);
        }
    }

    uint32_t last_number() const { return last_; }

  private:
    std::string next() { return cells_.at(at_++); }

    const uint8_t *octets() {
        const Row parts = split(next(), '@');
        const bool null = parts[0].starts_with("NULL");
        Octets &made = kept_.emplace_back(null ? Octets{} : from_hex(parts[0]));
        made.reserve(1);
        len_ = parts.size() > 1 ? number_of(parts[1]) : uint32_t(made.size());
        has_len_ = true;
        return null ? nullptr : made.data();
    }

    template <class Record>
    Record *record(const std::string &cell) {
        return cell == "NULL" ? nullptr : keep(rsa_record<Record>(cell));
    }

    template <class Record>
    Record *keep(const Record &made) {
        return reinterpret_cast<Record *>(kept_.emplace_back(octets_of(made)).data());
    }

    const Octets &hex(const std::string &cell) { return kept_.emplace_back(from_hex(cell)); }

    void *context() {
        const std::string cell = next();
        const Row words = split(cell, ' ');
        if (words[0] == "digest") {
            return keep(static_cast<int32_t>(number_of(words.at(1))));
        }
        if (words[0] == "hmac") {
            const Octets &key = hex(words.at(2));
            return keep(ZA_HMAC_RECORD{static_cast<int32_t>(number_of(words.at(1))), key.data(),
                                       uint32_t(key.size())});
        }
        if (words[0] == "pbe") {
            const Octets &oid = hex(words.at(1)), &password = hex(words.at(2)),
                         &salt = hex(words.at(3));
            return keep(ZA_PBE_RECORD{oid.data(), uint32_t(oid.size()), password.data(),
                                      uint32_t(password.size()), salt.data(), uint32_t(salt.size()),
                                      number_of(words.at(4))});
        }
        return record<ZA_RSArefPrivateKey>(cell);  // the public record is the beginning of it
    }

    const Row &cells_;
    uint8_t *out_;
    uint32_t *out_len_;
    std::deque<Octets> kept_;
    size_t at_ = 0;
    uint32_t last_ = 0;
    uint32_t len_ = 0;
    bool has_len_ = false;
};

struct Callable {
    std::function<uint32_t(const Row &cells, uint8_t *out, uint32_t *out_len)> call;
    bool writes_octets;
    bool gives_number;
};

template <class Result, class... Arguments>
Callable callable(Result (*function)(Arguments...)) {
    constexpr bool kGivesNumber = (std::is_same_v<Arguments, uint32_t *> || ...);
    const auto call = [function](const Row &cells, uint8_t *out, uint32_t *out_len) {
        CallArguments from(cells, out, out_len);
        const std::tuple<Arguments...> arguments{from.take<Arguments>()...};
        const auto result = static_cast<uint32_t>(std::apply(function, arguments));
        if (!kGivesNumber && result == 0) {
            *out_len = from.last_number();  // the caller says how many octets there are to be
        }
        return result;
    };
    return {call, (std::is_same_v<Arguments, uint8_t *> || ...), kGivesNumber};
}

}  // namespace za::test
