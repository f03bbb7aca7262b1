#!/usr/bin/env python3
"""Writes the cases known_answers.txt, boundaries.txt, rsa.txt and callbacks.txt beside itself.

Nothing in them comes from the library. MD2 (RFC 1319), RC2 (RFC 2268, checked with its vectors in rc2.txt), RC4, HMAC
over blocks of 64 octets and the key derivation are written out here and held against the openssl command wherever that
has them; triple DES, AES and RSA are the openssl command's. What is expected of bad calls is written by hand.
"""
import hashlib
import hmac
import pathlib
import subprocess

HERE = pathlib.Path(__file__).parent
KEYS = HERE.parent / "keys"
PASSWORD = bytes.fromhex("D6D0B9FA") + b"abc123"
SALT = bytes(range(1, 9))
TEXT = b"Thirteen octs"


def openssl(*arguments, text=b""):
    return subprocess.run(["openssl", *arguments], input=text, check=True, stdout=subprocess.PIPE).stdout


def digits_of_pi():
    """Octets that permutations are drawn from, as both RFCs say; Gibbons' spigot."""
    q, r, t, k, n, l = 1, 0, 1, 1, 3, 3
    while True:
        if 4 * q + r - t < n * t:
            yield n
            q, r, n = 10 * q, 10 * (r - n * t), 10 * (3 * q + r) // t - 10 * n
        else:
            q, r, t, k, n, l = q * k, (2 * q + r) * l, t * l, k + 1, (q * (7 * k + 2) + r * l) // (t * l), l + 2


def permutation_of_pi():
    digits = digits_of_pi()

    def random(count):
        limit, value = 10, next(digits)
        if count > 10:
            limit, value = 100, value * 10 + next(digits)
        if count > 100:
            limit, value = 1000, value * 10 + next(digits)
        return value % count if value < count * (limit // count) else random(count)

    table = list(range(256))
    for count in range(2, 257):
        other = random(count)
        table[other], table[count - 1] = table[count - 1], table[other]
    return table


PI = permutation_of_pi()


def md2(text):
    text += bytes([16 - len(text) % 16]) * (16 - len(text) % 16)
    check, last = bytearray(16), 0
    for at in range(0, len(text), 16):
        for i in range(16):
            check[i] ^= PI[text[at + i] ^ last]
            last = check[i]
    state = bytearray(48)
    for at in range(0, len(text) + 16, 16):
        block = (text + check)[at:at + 16]
        state[16:32] = block
        state[32:48] = bytes(a ^ b for a, b in zip(state, block))
        t = 0
        for rounds in range(18):
            for k in range(48):
                state[k] ^= PI[t]
                t = state[k]
            t = (t + rounds) % 256
    return bytes(state[:16])


RC2_PI = bytes.fromhex(
    "d978f9c419ddb5ed28e9fd794aa0d89dc67e37832b76538e624c6488448bfba2179a59f587b34f1361456d8d09817d32bd8f40eb86b77b0b"
    "f09521225c6b4e8254d66593ce60b21c7356c014a78cf1dc1275ca1f3bbee4d1423dd430a33cb6266fbf0eda4669075727f21d9bbc944303"
    "f811c7f690ef3ee706c3d52fc8661ed708e8eade8052eef784aa72ac354d6a2a961ad2715a1549744b9fd05e0418a4ecc2e0416e0f51cbcc"
    "2491af50a1f47039997c3a8523b8b47afc02365b255597312d5dfa98e38a92ae05df2910676cbac9d300e6cfe19ea82c6316013f58e289a9"
    "0d38341bab33ffb0bb480c5fb9b1cd2ec5f3db47e5a59c770aa62068fe7fc1ad")


def rc2(key, bits, block):
    size, mask = (bits + 7) // 8, 0xFF >> (-bits % 8)
    table = bytearray(key)
    while len(table) < 128:
        table.append(RC2_PI[(table[-1] + table[-len(key)]) % 256])
    table[128 - size] = RC2_PI[table[128 - size] & mask]
    for i in reversed(range(128 - size)):
        table[i] = RC2_PI[table[i + 1] ^ table[i + size]]
    keys = [int.from_bytes(table[i:i + 2], "little") for i in range(0, 128, 2)]
    r = [int.from_bytes(block[i:i + 2], "little") for i in range(0, 8, 2)]
    for step in range(16):
        for i, shift in enumerate((1, 2, 3, 5)):
            mixed = r[i] + keys[4 * step + i] + (r[i - 1] & r[i - 2]) + (~r[i - 1] & r[i - 3])
            r[i] = (mixed << shift | (mixed & 0xFFFF) >> 16 - shift) & 0xFFFF
        if step in (4, 10):
            for i in range(4):
                r[i] = (r[i] + keys[r[i - 1] % 64]) & 0xFFFF
    return b"".join(x.to_bytes(2, "little") for x in r)


def rc2_cbc(bits):
    def run(key, iv, text):
        out = b""
        for at in range(0, len(text), 8):
            iv = rc2(key, bits, bytes(a ^ b for a, b in zip(iv, text[at:at + 8])))
            out += iv
        return out
    return run


def rc4(key, _, text):
    state, j, out = list(range(256)), 0, []
    for i in range(256):
        j = (j + state[i] + key[i % len(key)]) % 256
        state[i], state[j] = state[j], state[i]
    j = 0
    for n, octet in enumerate(text, 1):
        i = n % 256
        j = (j + state[i]) % 256
        state[i], state[j] = state[j], state[i]
        out.append(octet ^ state[(state[i] + state[j]) % 256])
    return bytes(out)


def triple_des(key, iv, text):
    key = key if len(key) == 24 else key[:16] + key[:8]
    return openssl("enc", "-des-ede3-cbc", "-nopad", "-K", key.hex(), "-iv", iv.hex(), text=text)


def two_keys(key, iv, text):
    return triple_des(key[:16], iv, text)


HASHES = {3: md2} | {number: lambda text, name=name: hashlib.new(name, text).digest() for number, name in
                     ((5, "md5"), (7, "sha1"), (9, "sha256"), (11, "sha384"), (13, "sha512"))}


def derive(digest, password, salt, use, iterations, wanted):
    def cyclic(text):
        return (text * 64)[:-(-len(text) // 64) * 64] if text else b""
    wide = b"".join(bytes([0, octet]) for octet in password) + bytes(2)
    text, out = cyclic(salt) + cyclic(wide), b""
    while True:
        value = bytes([use]) * 64 + text
        for _ in range(max(iterations, 1)):
            value = HASHES[digest](value)
        out += value
        if len(out) >= wanted:
            break
        addend = int.from_bytes((value * 64)[:64], "big") + 1
        text = b"".join(((int.from_bytes(text[at:at + 64], "big") + addend) % 2 ** 512).to_bytes(64, "big")
                        for at in range(0, len(text), 64))
    out = out[:wanted]
    if digest in (5, 7, 9) and salt:
        name = {5: "MD5", 7: "SHA1", 9: "SHA256"}[digest]
        theirs = openssl("kdf", "-binary", "-keylen", str(wanted), "-kdfopt", f"digest:{name}", "-kdfopt",
                         f"hexpass:{wide.hex()}", "-kdfopt", f"hexsalt:{salt.hex()}", "-kdfopt", f"id:{use}",
                         "-kdfopt", f"iter:{max(iterations, 1)}", "PKCS12KDF")
        assert out == theirs, name
    return out


def check():
    assert md2(b"abc").hex() == "da853b0d3f88d99b30283a69e6ded6bb"
    for row in (HERE / "rc2.txt").read_text().splitlines():
        if not row.startswith("#"):
            bits, key, text, cipher = (cell.strip() for cell in row.split("|")[1:])
            assert rc2(bytes.fromhex(key), int(bits), bytes.fromhex(text)).hex().upper() == cipher, row
    legacy = ("-provider", "legacy", "-provider", "default", "-K")
    for name, own, size in (("-rc2-cbc", rc2_cbc(128), 16), ("-rc2-40-cbc", rc2_cbc(40), 5), ("-rc4", rc4, 16),
                            ("-rc4-40", rc4, 5)):
        key, iv = bytes(range(size)), bytes(range(8))
        given = () if "rc4" in name else ("-nopad", "-iv", iv.hex())
        assert own(key, iv, bytes(24)) == openssl("enc", name, *legacy, key.hex(), *given, text=bytes(24)), name


PKCS12, PKCS5 = "2A864886F70D010C01", "2A864886F70D0105"
THREE_KEYS, RC4, RC2 = PKCS12 + "03", PKCS12 + "01", PKCS12 + "05"
GENERAL = "108: ------>ZACERT_GeneralErr"
CRYPT = "126: ------>ZACERT_CryptErr  Err"
BAD_PAD = "101: ------>ZA_PKCS12_DecPad  Err"
BAD_TEXT = BAD_PAD + "; ----------->ZA_PKCS12_DecPad"
BAD_OID = "139: ------>ZACERT_IvaliedAlgo  Err"
BAD_DIGEST = "125: ------>ZACERT_DigestedErr  Err"
OIDS = {3: "06082A864886F70D0202", 5: "06082A864886F70D0205", 7: "06052B0E03021A", 9: "0609608648016503040201",
        11: "0609608648016503040202", 13: "0609608648016503040203"}


def write(name, rows):
    lines = ["# function | arguments, as tests/crypto/za_crypt_calls.hpp reads them | outcome; made by make-vectors.py"]
    for function, *arguments, outcome in rows:
        cells = [cell.hex().upper() if isinstance(cell, bytes) else str(cell) for cell in (*arguments, outcome)]
        lines.append(f"{function} | {'; '.join(cells[:-1])} | {cells[-1]}".rstrip())
    (HERE / name).write_text("\n".join(lines) + "\n")


# ---- Known answers

def digests():
    for digest in HASHES:
        for text in (b"", b"abc", bytes(range(200))):
            yield "PKCS7_DigestMessage", digest, text, HASHES[digest](text)
    yield "PKCS7_DigestMessage", 7, "NULL", HASHES[7](b"")


def twelve():
    table = [("RC4", PKCS12 + "01", rc4, 16, 7), ("RC4", PKCS12 + "02", rc4, 5, 7),
             ("3DES", PKCS12 + "03", triple_des, 24, 7), ("3DES", PKCS12 + "04", two_keys, 16, 7),
             ("RC2", PKCS12 + "05", rc2_cbc(128), 16, 7), ("RC2", PKCS12 + "06", rc2_cbc(40), 5, 7),
             ("3DES", PKCS5 + "01", two_keys, 24, 3), ("RC2", PKCS5 + "04", rc2_cbc(40), 16, 3),
             ("3DES", PKCS5 + "03", two_keys, 24, 5), ("RC2", PKCS5 + "06", rc2_cbc(40), 16, 5),
             ("3DES", PKCS5 + "0A", two_keys, 24, 7), ("RC2", PKCS5 + "0B", rc2_cbc(40), 16, 7)]
    for _, oid, cipher, size, digest in table:
        key, iv = (derive(digest, PASSWORD, SALT, use, 3, length) for use, length in ((1, size), (2, 8)))
        for text in (TEXT, bytes(range(16))):
            pad = 0 if cipher is rc4 else 8 - len(text) % 8
            secret = cipher(key, iv, text + bytes([pad]) * pad)
            yield "PKCS12_PbeWithDigestAlgoAndEncrypt", oid, PASSWORD, SALT, 3, text, secret
            yield "PKCS12_PbeWithDigestAlgoAndDecrypt", oid, PASSWORD, SALT, 3, secret, text
            yield "PKCS12_DESEncrypt", oid, key, iv, text, secret
            yield "PKCS12_DESDecrypt", oid, key, iv, secret, text


def derivations():
    for digest in HASHES:
        for password, salt, use, iterations, wanted in (
                (b"abc123", SALT, 1, 2000 if digest != 3 else 20, 24), (b"abc123", SALT, 3, 20, 20),
                (PASSWORD, bytes(range(70)), 2, 1, 130), (b"", SALT, 3, 2, 8), (b"x" * 31, b"", 1, 0, 20),
                (b"y" * 32, b"z" * 64, 3, 1, 64)):
            yield ("PKCS12_GenRandomFromPassword", digest, password, salt, use, iterations, wanted,
                   derive(digest, password, salt, use, iterations, wanted))
    yield "PKCS12_GenRandomFromPassword", 7, "NULL", "NULL", 1, 1, 0, ""


def macs():
    for digest, size in ((3, 16), (5, 16), (7, 20)):
        for length in (0, 1, 63, 64, 65, 256):
            key, text = bytes(i % 256 for i in range(length)), bytes(range(100))
            short = (key if length <= 64 else HASHES[digest](key)).ljust(64, b"\0")
            inner = HASHES[digest](bytes(x ^ 0x36 for x in short) + text)
            mac = HASHES[digest](bytes(x ^ 0x5C for x in short) + inner)
            assert digest == 3 or mac == hmac.new(key, text, {5: "md5", 7: "sha1"}[digest]).digest()
            yield "PKCS12_HMAC", digest, key, text, mac
    yield "PKCS12_HMAC", 7, "NULL @300", "", hmac.new(b"", b"", "sha1").digest()


def aes():
    key, iv = b"\x11" * 16, b"\x22" * 16
    for mode, name, given in ((1, "ecb", "NULL"), (2, "cbc", iv)):
        def encrypted(text):
            return openssl("enc", f"-aes-128-{name}", "-nopad", "-K", key.hex(),
                           *(("-iv", iv.hex()) if mode == 2 else ()), text=text)
        for length in (1, 13, 15, 16, 17, 8191):
            text, pad = b"\x5a" * length, 16 - length % 16
            yield "PKCS12_AESEncrypt", mode, key, given, text, encrypted(text + bytes([pad]) * pad)
            yield "PKCS12_AESDecrypt", mode, key, given, encrypted(text + bytes([pad]) * pad), text
        for last, outcome in ((0, "5A*31 00"), (1, "5A*31"), (31, "5A"), (32, ""), (33, GENERAL), (255, GENERAL)):
            yield "PKCS12_AESDecrypt", mode, key, given, encrypted(b"\x5a" * 31 + bytes([last])), outcome


# ---- Boundaries

def padding():
    for length in (0, 1, 7, 8, 9, 13, 16):
        text, pad = b"\x5a" * length, 8 - length % 8
        yield "PKCS12_AddPad", text, text + bytes([pad]) * pad
    yield "PKCS12_AddPad", "NULL", "08*8"
    yield "PKCS12_AddPad", "NULL @1", GENERAL
    for huge in ("0x7FFFFF01", "0xFFFFFFFF"):
        yield "PKCS12_AddPad", f"00 @{huge}", "100: ZAPR_Malloc"
    for text, outcome in (("", BAD_PAD), ("NULL @1", GENERAL), ("00", "00"), ("01", BAD_PAD), ("AABB00", "AABB00"),
                          ("AABB01", "AABB"), ("AABB02", "AA"), ("AABB03", BAD_PAD), ("AABBFF", BAD_PAD),
                          ("AA*63 3F", "AA"), ("08*8", BAD_PAD)):
        yield "PKCS12_DecPad", text, outcome


def passwords():
    for password, outcome in (("", "0000"), ("NULL @5", "0000"), ("61 80 FF", "0061 0080 00FF 0000")):
        yield "PKCS12_ACIItoUNI", password, outcome


def bad_aes():
    for function in ("PKCS12_AESEncrypt", "PKCS12_AESDecrypt"):
        for arguments, line in (
                ((0, "NULL", "NULL", "NULL"), "algMode"), ((3, "11*16", "22*16", "33*16"), "algMode"),
                ((1, "NULL @9", "NULL", "NULL"), "key"), ((2, "11*15", "NULL", "NULL"), "keyLen"),
                ((1, "11*24", "NULL", "NULL"), "keyLen"), ((2, "11*16", "NULL @9", "NULL"), "pIv"),
                ((2, "11*16", "22*15", "NULL"), "pIvLen"), ((2, "11*16", "22*17", "NULL"), "pIvLen"),
                ((2, "11*16", "22*16", "NULL @3"), "input"), ((1, "11*16", "NULL @3", "NULL"), "input"),
                ((1, "11*16", "NULL", ""), "inputLen")):
            yield function, *arguments, f"108: ----->{line}"
    for length in (15, 17, 8193):
        yield "PKCS12_AESDecrypt", 1, "11*16", "NULL", f"33*{length}", "108: ----->inputLen err, Must 16*n"
    yield "PKCS12_AESDecrypt", 1, "11*16", "NULL", "33*8208", "108: ----->inputLen"
    for huge in ("0x7FFFFF01", "0xFFFFFFFF"):
        yield "PKCS12_AESEncrypt", 1, "11*16", "NULL", f"00 @{huge}", "108: ----->inputLen"


def bad_macs_and_derivations():
    for digest in (0, 4, 9, 13, -1):
        yield "PKCS12_HMAC", digest, "11", "22", CRYPT
    yield "PKCS12_HMAC", 7, "11*257", "22", CRYPT
    yield "PKCS12_HMAC", 7, "11", "NULL @2", GENERAL
    for digest in (0, 1, 4, 6, 8, 10, 12, 14, 15, -1):
        yield "PKCS12_GenRandomFromPassword", digest, "61", "01", 1, 1, 8, CRYPT
    for password, salt in (("NULL @1", "01"), ("61", "NULL @1"), ("00 @0x7FFFFF01", "01"), ("61", "00 @0xFFFFFFFF")):
        yield "PKCS12_GenRandomFromPassword", 7, password, salt, 1, 1, 8, CRYPT


def ciphers():
    # The identifier is looked at before so many iterations are run.
    endless = -1
    for oid in ("", "NULL @10", PKCS5, PKCS5 + "02", PKCS5 + "0A00", PKCS12 + "07", PKCS12 + "00", "2B0E03021A"):
        yield "PKCS12_PbeWithDigestAlgoAndEncrypt", oid, "61", "01", endless, "5A", BAD_OID
        yield "PKCS12_PbeWithDigestAlgoAndDecrypt", oid, "61", "01", endless, "5A*8", BAD_OID
        yield "PKCS12_DESEncrypt", oid, "11", "22", "5A", BAD_OID
        yield "PKCS12_DESDecrypt", oid, "11", "22", "5A*8", BAD_OID
    yield "PKCS12_DESDecrypt", "2B", "NULL", "NULL", "", "139: ----------->inputLen error"
    for length in (1, 7, 9):
        yield "PKCS12_DESDecrypt", THREE_KEYS, "11*24", "22*8", f"5A*{length}", BAD_TEXT
        yield "PKCS12_PbeWithDigestAlgoAndDecrypt", THREE_KEYS, "61", "01", endless, f"5A*{length}", BAD_TEXT
    yield "PKCS12_PbeWithDigestAlgoAndDecrypt", THREE_KEYS, "61", "01", endless, "", BAD_TEXT
    for way in ("Encrypt", "Decrypt"):
        yield f"PKCS12_PbeWithDigestAlgoAnd{way}", RC4, "61", "01", 2, "", ""
        yield f"PKCS12_PbeWithDigestAlgoAnd{way}", THREE_KEYS, "61", "01", 1, "NULL @8", GENERAL
        for password, salt in (("NULL @1", "01"), ("61", "NULL @1")):
            yield f"PKCS12_PbeWithDigestAlgoAnd{way}", THREE_KEYS, password, salt, 1, "5A*8", GENERAL
        yield (f"PKCS12_PbeWithDigestAlgoAnd{way}", THREE_KEYS, "61", "01", 1, "00 @0x7FFFFF08",
               "100: ------------>ZAPR_Malloc")
        for oid, key, iv in ((THREE_KEYS, "NULL", "22*8"), (THREE_KEYS, "11*257", "22*8"),
                             (THREE_KEYS, "11*24", "NULL @8"), (RC2, "", "22*8"), (RC2, "11*129", "22*8"),
                             (RC2, "11*16", "NULL"), (RC4, "", "NULL"), (RC4, "11*257", "NULL")):
            yield f"PKCS12_DES{way}", oid, key, iv, "5A*8", GENERAL
    key, iv = b"\x11" * 24, b"\x22" * 8
    empty = triple_des(key, iv, b"\x08" * 8)
    yield "PKCS12_DESEncrypt", THREE_KEYS, key, iv, "", empty
    yield "PKCS12_DESDecrypt", THREE_KEYS, key, iv, empty, BAD_TEXT
    yield "PKCS12_DESDecrypt", THREE_KEYS, key, iv, triple_des(key, iv, b"\x5a" * 7 + b"\0"), "5A*7 00"
    yield "PKCS12_DESDecrypt", THREE_KEYS, key, iv, triple_des(key, iv, b"\x5a" * 15 + b"\x0f"), "5A"
    text = b"\x5a" * 8 + b"\x08" * 8
    for given_key, given_iv in ((key[:9], iv[:3]), (b"", b""), (key * 10, iv + b"\x33" * 9)):
        secret = triple_des(given_key.ljust(24, b"\0")[:24], given_iv.ljust(8, b"\0")[:8], text)
        yield "PKCS12_DESEncrypt", THREE_KEYS, given_key, given_iv, "5A*8", secret
    for length in (1, 128):
        secret = rc2_cbc(128)(b"\x11" * length, iv, text)
        yield "PKCS12_DESEncrypt", RC2, b"\x11" * length, iv, "5A*8", secret
    for given_iv in ("NULL", "22"):
        yield "PKCS12_DESEncrypt", RC4, b"\x11" * 256, given_iv, text, rc4(b"\x11" * 256, b"", text)


def bad_digests():
    for number in (-1, 0, 1, 2, 4, 6, 8, 10, 12, 14, 15, -2147483643):
        yield "PKCS7_DigestMessage", number, "NULL @1", BAD_DIGEST
    yield "PKCS7_DigestMessage", 7, "00 @-1", "101: ------>ZACERT_LengthErr"
    yield "PKCS7_DigestMessage", 7, "NULL @3", GENERAL


# ---- RSA

def numbers(key):
    """The INTEGERs of an RSAPrivateKey of 1024 or 2048 bits."""
    der, at, out = (KEYS / f"{key}.der").read_bytes(), 4, []
    while at < len(der):
        extra = der[at + 1] & 0x7F if der[at + 1] & 0x80 else 0
        first = at + 2 + extra
        size = int.from_bytes(der[at + 2:first], "big") if extra else der[at + 1]
        out.append(int.from_bytes(der[first:first + size], "big"))
        at = first + size
    return out


def sign(key, text):
    _, modulus, _, exponent, *_ = numbers(key)
    size = modulus.bit_length() // 8
    block = b"\0\1" + b"\xFF" * (size - 3 - len(text)) + b"\0" + text
    signature = pow(int.from_bytes(block, "big"), exponent, modulus).to_bytes(size, "big")
    return signature if len(text) > 64 else same(signature, pkeyutl(key, "-sign", text))  # openssl signs no more


def same(one, other):
    assert one == other
    return one


def pkeyutl(key, way, text):
    """The raw operation, with PKCS#1 v1.5 padding and without a digest."""
    return openssl("pkeyutl", way, "-inkey", KEYS / f"{key}.der", "-keyform", "DER", text=text)


def digest_info(digest, text):
    value = HASHES[digest](text)
    algorithm = bytes.fromhex(OIDS[digest] + "0500")
    parts = bytes([0x30, len(algorithm)]) + algorithm + bytes([4, len(value)]) + value
    return bytes([0x30, len(parts)]) + parts


def signatures(key):
    other = "rsa2048" if key == "rsa1024" else "rsa1024"
    for digest in HASHES:
        info = digest_info(digest, b"abc")
        signature = sign(key, info)
        yield "PKCS7_SignedData", digest, b"abc", key, signature
        yield "PKCS7_RSAPrivateEncrypt", info, key, signature
        yield "PKCS7_RSAPublicDecrypt", signature, key, info
        cases = [(b"abc", signature, key, 1), (b"abd", signature, key, 0), (b"abc", signature, other, 0),
                 (b"abc", signature[:-1] + bytes([signature[-1] ^ 1]), key, 0), (b"abc", signature + b"\0", key, 0),
                 (b"abc", sign(key, info + b"behind"), key, 1), (b"abc", "", key, 0),
                 (b"abc", sign(key, b"\0" + info), key, 0),
                 (b"abc", sign(key, info[:-1]), key, 0), (b"abc", signature, "rsa1024 260+256", 0),
                 (b"abc", signature, "rsa1024 4+256", 0),
                 (b"abc", signature, "NULL", "128: ------>RSAref_Public_ref2eay  Err")]
        for text, given, record, outcome in cases:
            yield "PKCS7_VerifySignature", digest, text, given, record, outcome
    for number in (0, 4, 14, -1):
        yield "PKCS7_SignedData", number, "NULL @1", "NULL", BAD_DIGEST
        yield "PKCS7_VerifySignature", number, "NULL @1", "NULL @1", "NULL", BAD_DIGEST
    for text, outcome in (("00 @-1", "101: ------>ZACERT_LengthErr"), ("NULL @1", GENERAL)):
        yield "PKCS7_SignedData", 7, text, "NULL", outcome
        yield "PKCS7_VerifySignature", 7, text, "00", "NULL", outcome
    yield "PKCS7_VerifySignature", 7, "00", "NULL @1", key, GENERAL


def operations(key, size):
    failure = "126 -1: ------>RSA_{}  Err".format
    for length in (0, 1, 13, size - 11):
        text = b"\x5a" * length
        yield "PKCS7_RSAPrivateEncrypt", text, key, sign(key, text)
        if text:  # newer libcrypto takes an opened block without octets for a failure
            yield "PKCS7_RSAPublicDecrypt", sign(key, text), key, text
        yield "PKCS7_RSAPrivateDecrypt", pkeyutl(key, "-encrypt", text), key, text
    yield "PKCS7_RSAPublicEncrypt", f"5A*{size - 10}", key, failure("public_encrypt")
    yield "PKCS7_RSAPrivateEncrypt", f"5A*{size - 10}", key, failure("private_encrypt")
    yield "PKCS7_RSAPublicDecrypt", f"5A*{size}", key, failure("public_decrypt")
    yield "PKCS7_RSAPrivateDecrypt", f"5A*{size + 1}", key, failure("private_decrypt")
    for function in ("PublicEncrypt", "PublicDecrypt", "PrivateEncrypt", "PrivateDecrypt"):
        kind = "Public" if function.startswith("Public") else "Private"
        yield f"PKCS7_RSA{function}", "00", "NULL", f"126: ------>RSAref_{kind}_ref2eay  Err"
        yield f"PKCS7_RSA{function}", "NULL @1", key, GENERAL


def spoilt_keys():
    """Where the numbers of a private record stand: modulus 4, exponents 260 and 516, the five others from 772 on."""
    signature = sign("rsa1024", b"\1")
    load, run = "126: ------>RSAref_Private_ref2eay  Err", "126 -1: ------>RSA_private_encrypt  Err"
    # Without any one of its primes and what belongs to them a key works all the same.
    for first in (772, 900, 1028, 1156, 1284):
        yield "PKCS7_RSAPrivateEncrypt", "01", f"rsa1024 {first}+128", signature
    for key, outcome in (("516+256", load), ("4+256", run), ("4+255", run), ("4+248", run), ("259+1", run)):
        # A modulus that is no modulus: newer libcrypto refuses the key and not the operation.
        early = f" or {load}" if key.startswith("4+") else ""
        yield "PKCS7_RSAPrivateEncrypt", "01", f"rsa1024 {key}", outcome + early
        yield "PKCS7_SignedData", 7, "01", f"rsa1024 {key}", (outcome + early).replace("126:", "127:")
        for text in (signature, ""):
            given = outcome if outcome is load else outcome.replace("encrypt", "decrypt")
            yield "PKCS7_RSAPrivateDecrypt", text, f"rsa1024 {key}", given + early
        if outcome is run:
            opening = run.replace("private_encrypt", "public_decrypt")
            yield "PKCS7_RSAPublicDecrypt", signature, f"rsa1024 {key}", opening
            yield "PKCS7_RSAPublicEncrypt", "01", f"rsa1024 {key}", run.replace("private", "public")
    yield "PKCS7_SignedData", 7, "01", "NULL", "127: ------>RSAref_Private Is NULL  Err"


# ---- Functions that callers install

def callbacks():
    pbe = f"pbe {THREE_KEYS} {PASSWORD.hex()} {SALT.hex()} 3"
    key, iv = (derive(7, PASSWORD, SALT, use, 3, size) for use, size in ((1, 24), (2, 8)))
    secret = triple_des(key, iv, TEXT + b"\3\3\3")
    mac = hmac.new(b"\x11" * 200, TEXT, "sha1").digest()
    signed, sealed = sign("rsa1024", TEXT), pkeyutl("rsa1024", "-encrypt", TEXT)
    no_key, no_record = ("121: ------>" + text + " == NULL  Err" for text in ("pKey", "pStandard"))
    for function, text, context, outcome, null in (
            ("DigestFunc_Ref", TEXT, "digest 9", HASHES[9](TEXT), "121: ------>degistAlgo == NULL  Err"),
            ("DigestFunc_Ref", TEXT, "digest 4", BAD_DIGEST + "; ------>ZA_PKCS7_DigestMessage  Err", None),
            ("DigestFunc_Ref", "00 @0x80000000", "digest 7",
             "101: ------>ZACERT_LengthErr; ------>ZA_PKCS7_DigestMessage  Err", None),
            ("PrivateKeyEncFunc_Ref", TEXT, "rsa1024", signed, no_key),
            ("PrivateKeyEncFunc_Ref", TEXT, "rsa1024 516+256",
             "126: ------>RSAref_Private_ref2eay  Err; ------>ZA_PKCS7_RSAPrivateEncrypt  Err", None),
            ("PrivateKeyDecryptFunc_Ref", sealed, "rsa1024", TEXT, no_key),
            ("PrivateKeyDecryptFunc_Ref", "00*129", "rsa1024",
             "126 -1: ------>RSA_private_decrypt  Err; ------>ZA_PKCS7_RSAPrivateDecrypt  Err", None),
            ("PublicKeyDecryptFunc_Ref", signed, "rsa1024", TEXT, no_key),
            ("PublicKeyDecryptFunc_Ref", sealed, "rsa1024",
             "126 -1: ------>RSA_public_decrypt  Err; ------>ZA_PKCS7_RSAPublicDecrypt  Err", None),
            ("PublicKeyEncryptFunc_Ref", "5A*118", "rsa1024",
             "126 -1: ------>RSA_public_encrypt  Err; ------>ZA_PKCS7_RSAPublicEncrypt  Err", no_key),
            ("EncryptFunc_Ref", TEXT, pbe, secret, no_record),
            ("EncryptFunc_Ref", TEXT, pbe.replace(THREE_KEYS, "2B"),
             BAD_OID + "; ------>ZA_PKCS12_PbeWithDigestAlgoAndEncrypt  Err", None),
            ("DecryptFunc_Ref", secret, pbe, TEXT, no_record),
            ("DecryptFunc_Ref", secret[1:], pbe,
             BAD_TEXT + "; ------>ZA_PKCS12_PbeWithDigestAlgoAndDecrypt  Err", None),
            ("HMACFunc_Ref", TEXT, f"hmac 7 {'11' * 200}", mac, no_record),
            ("HMACFunc_Ref", TEXT, f"hmac 7 {'11' * 201}", CRYPT + "; ------>ZA_PKCS12_HMAC  Err", None),
            ("HMACFunc_Ref", TEXT, "hmac 9 11", CRYPT + "; ------>ZA_PKCS12_HMAC  Err", None)):
        yield function, text, context, outcome
        if null is not None:
            yield function, text, "NULL", null


check()
write("known_answers.txt", [*digests(), *twelve(), *derivations(), *macs(), *aes()])
write("boundaries.txt", [*passwords(), *padding(), *bad_aes(), *bad_macs_and_derivations(), *ciphers(), *bad_digests()])
write("rsa.txt", [*signatures("rsa1024"), *signatures("rsa2048"), *operations("rsa1024", 128),
                  *operations("rsa2048", 256), *spoilt_keys()])
write("callbacks.txt", callbacks())
