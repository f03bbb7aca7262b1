"""Messages that the tool makes are read by openssl and certtool, and theirs by the tool."""

import itertools
import re
import unittest

from support.messages import MessageTest, by_openssl, good, signed, tool
from support.peers import FOLDER, attempt, certificate, file, octets_of, refusing, run
from support.token import make_token, uri

CIPHERS = "aes-128-cbc", "aes-192-cbc", "aes-256-cbc", "des-ede3-cbc"
# Beyond 64 KiB, where lengths take one octet more.
CONTENT = bytes(range(256)) * 310 + b"\r\nend"
HEX = "00112233445566778899aabbccddeeff"
NOT_OPENED = "does not open the message, or the message is damaged"


def sign(who, options="", content="content"):
    return good(f"p7 sign --cert {who}.pem --key {who}.key --out message {options} {content}")


def encrypt(options, content="content"):
    good(f"p7 encrypt --out message {options} {content}")
    return octets_of("message")


def decrypted(options):
    good(f"p7 decrypt --out out {options} message")
    return octets_of("out")


class Making(MessageTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        file("content", CONTENT)

    # ---- sign ------------------------------------------------------------------------------------

    def verified(self, detached=""):
        """By every other program, who each give the content back, and by the tool."""
        beside = "content" if detached else None
        for program in "cms", "smime":
            self.assertEqual(refusing("message", beside, {program, "certtool"}), set())
            self.assertEqual(octets_of("out"), CONTENT)
        good(f"p7 verify --ca root.pem message {'--content content' if detached else ''}")

    def test_every_form_of_signature(self):
        for options in itertools.product(("", "--digest sha384", "--digest sha512"),
                                         ("", "--no-attributes"), ("", "--detached")):
            with self.subTest(options):
                sign("second", " ".join(options))
                self.verified(options[-1])
        sign("user", "--pem")
        self.assertTrue(octets_of("message").startswith(b"-----BEGIN PKCS7-----\n"))
        good("p7 verify --ca root.pem message")
        by_openssl("pkcs7 -in message -outform DER -out message")
        self.verified()

    def test_what_is_signed(self):
        file("chain", octets_of("root.pem") + octets_of("second.pem"))
        sign("second", "--chain chain")
        text = by_openssl("cms -cmsout -print -inform DER -in message").decode()
        self.assertRegex(text, r"(?s)algorithm: sha256.*signedAttrs:.*contentType.*pkcs7-data.*"
                               r"signingTime.*UTCTIME:.*messageDigest.*unsignedAttrs:\s+<ABSENT>")
        self.assertEqual(re.findall(r"d\.certificate: *(.*)", text), ["", ""])  # the signer's once
        sign("second", "--detached --no-attributes")
        self.assertEqual(refusing("message", file("other", CONTENT[:-1]), {"cms"}), {"cms"})
        good("p7 sign --cert second.pem --key second.key --out message -", CONTENT)
        self.verified()

    def test_keys_of_any_size(self):
        for bits in 1024, 5120:
            certificate("any", f"rsa:{bits} -subj /CN=any -CA root.pem -CAkey root.key")
            sign("any")
            self.verified()

    def test_one_more_signer(self):
        for detached, content in ("", ""), ("--detached", "content"):
            sign("second", detached)
            sign("user", "--add message --digest sha512", content)
            sign("third", "--add message", content)
            self.verified(detached)
            by_openssl("cms -verify -in message -inform DER -CAfile root.pem -binary -out out "
                       f"-signer signers {'-content content' if detached else ''}")
            self.assertEqual(octets_of("signers").count(b"BEGIN CERTIFICATE"), 3)
        add = "p7 sign --cert user.pem --key user.key --add message content"
        self.bad("attributes", f"{add} --no-attributes", status=2)
        sign("second")
        self.bad("CONTENT", add, status=2)
        # Streamed, and with a signer of openssl's.
        file("message", signed("-nodetach -stream", "second", content=CONTENT))
        sign("user", "--add message", content="")
        self.verified()

    def test_sm2(self):
        sign("sm2")
        good("p7 verify --ca root.pem message")
        sign("sm2", "--detached --no-attributes")
        good("p7 verify --ca root.pem --content content message")
        text = by_openssl("asn1parse -inform DER -in message").decode()
        self.assertRegex(text, r":1\.2\.156\.10197\.1\.501|SM2-with-SM3|SM2-SM3")
        self.assertEqual(refusing("message", "content", {"cms"}), {"cms"})

    def test_token(self):
        make_token(FOLDER)
        key = f"--key {uri('object=rsa')} --password-file pin"
        good(f"request new --subject CN=token --out csr {key}")
        by_openssl("x509 -req -in csr -CA root.pem -CAkey root.key -out token.pem")
        for options in "", "--no-attributes --digest sha512":
            good(f"p7 sign --cert token.pem {key} --out message {options} content")
            self.verified()
        self.bad("ECDSA", f"p7 sign --cert token.pem --pkcs11 {uri('object=ec;id=%03')} "
                          "--password-file pin content")

    def test_signers_refused(self):
        file("empty", b"")
        for reason, who, arguments, status in (
                ("not that of the certificate", "second", "user.key content", 1),
                ("ECDSA", "ec", "ec.key content", 1),
                ("SM3", "sm2", "sm2.key --digest sha256 content", 2),
                ("sha1", "second", "second.key --digest sha1 content", 2),
                ("CONTENT", "second", "second.key", 2),
                ("empty", "second", "second.key empty", 1),
                ("expected the content", "second", "second.key no-such-file", 1),
                ("expected a private key", "second", "content content", 1)):
            self.bad(reason, f"p7 sign --cert {who}.pem --key {arguments}", status=status)

    # ---- encrypt, decrypt ------------------------------------------------------------------------

    def test_envelopes_for_others(self):
        for cipher in CIPHERS:
            encrypt(f"--to second.pem --to user.pem --cipher {cipher}")
            for who, program in itertools.product(("second", "user"), ("cms", "smime")):
                self.assertEqual(CONTENT, by_openssl(
                    f"{program} -decrypt -binary -inform DER -in message -inkey {who}.key "
                    f"-recip {who}.pem"), (cipher, who, program))
                self.assertEqual(decrypted(f"--key {who}.key --cert {who}.pem"), CONTENT)
                self.assertEqual(decrypted(f"--key {who}.key"), CONTENT)
        text = by_openssl("cms -cmsout -print -inform DER -in message")
        self.assertEqual(text.count(b"algorithm: rsaEncryption (1.2.840.113549.1.1.1)"), 2)
        encrypt("--to second.pem --pem")
        self.assertEqual(CONTENT, by_openssl(
            "cms -decrypt -binary -inform PEM -in message -inkey second.key"))
        self.assertNotEqual(encrypt("--to second.pem")[-600:], encrypt("--to second.pem")[-600:])

    def test_envelopes_of_others(self):
        write = "-encrypt -in content -binary -out message"
        for cipher, form in itertools.product(CIPHERS, (
                "cms -outform DER", "cms -outform DER -stream", "cms -outform PEM -stream",
                "smime -outform DER")):
            by_openssl(f"{form} {write} -{cipher} third.pem second.pem user.pem")
            for key in "second.key", "user.key", "second.key --cert second.pem":
                # As many octets for the second as for the third.
                self.assertEqual(decrypted(f"--key {key}"), CONTENT)
        for expected, options in (
                ("RSA key of this size", "-recip second.pem -keyopt rsa_padding_mode:oaep"),
                ("ciphers", "-camellia128 second.pem"), ("", "-aes-128-gcm second.pem")):
            by_openssl(f"cms {write} -outform DER {options}")
            self.bad(expected, "p7 decrypt --key second.key message")

    def test_secret_keys(self):
        for cipher, digits in zip(CIPHERS, (HEX, HEX + HEX[:16], HEX * 2, HEX[:16] * 3)):
            named = "--cipher des-ede3-cbc" if "des" in cipher else ""
            encrypt(f"--secret-key {digits} {named}")
            secret = f"-secretkey {digits} -binary"
            self.assertEqual(CONTENT, by_openssl(
                f"cms -EncryptedData_decrypt {secret} -inform DER -in message"), cipher)
            file("key", digits.encode() + b"\n")
            for stream in "", "-stream":
                by_openssl(f"cms -EncryptedData_encrypt {secret} -{cipher} -in content "
                           f"-outform DER -out message {stream}")
                self.assertEqual(decrypted("--secret-key-file key"), CONTENT)
        for reason, arguments in (
                ("32 octets", f"encrypt --cipher aes-256-cbc --secret-key {HEX} content"),
                ("hexadecimal", "encrypt --secret-key 0g content"),
                ("hexadecimal", f"encrypt --secret-key {HEX[1:]} content"),
                ("hexadecimal", "encrypt --secret-key 00:11 content"),
                ("found 8", f"encrypt --secret-key {HEX[:16]} content"),
                ("24 octets", f"decrypt --secret-key {HEX} message"),
                ("found encryptedData", "decrypt --key second.key message")):
            self.bad(reason, f"p7 {arguments}")

    def test_what_does_not_open(self):
        message = encrypt("--to second.pem", file("block", bytes(16)))
        decrypt = "p7 decrypt --key second.key damaged"
        for damaged in *(message[:cut] for cut in range(0, len(message), 9)), message + b"\0":
            file("damaged", damaged)
            self.bad("PKCS#7 message", decrypt)
        # Two blocks, the second one padding: its last octet becomes 0.
        self.assertEqual(len(message) - message.rindex(bytes.fromhex("8020")), 34)
        key = message.index(bytes.fromhex("04820100")) + 4
        for at, mask in (len(message) - 17, 16), *((key + octet, 1) for octet in range(0, 256, 8)):
            file("damaged", message[:at] + bytes([message[at] ^ mask]) + message[at + 1:])
            self.bad(NOT_OPENED, decrypt)
        for reason, arguments, status in (
                (NOT_OPENED, "decrypt --key third.key message", 1),
                ("not for this certificate", "decrypt --key third.key --cert third.pem message", 1),
                ("key of this size", "decrypt --key user.key message", 1),
                ("not that of", "decrypt --key second.key --cert third.pem message", 1),
                ("RSA", "decrypt --key ec.key message", 1),
                ("RSA", "encrypt --to second.pem --to sm2.pem content", 1),
                ("RSA", "encrypt --to ec.pem content", 1),
                ("required", "encrypt content", 2),
                ("required", "decrypt message", 2)):
            self.bad(reason, f"p7 {arguments}", status=status)

    # ---- digest ----------------------------------------------------------------------------------

    def test_digests(self):
        for digest in "sha256", "sha384", "sha512":
            good(f"p7 digest --digest {digest} --out message content")
            self.assertIn("(200)", good("p7 digest --check message"))
            # The digest is of more than the content.
            self.assertFalse(attempt("openssl cms -digest_verify -inform DER -in message")[0])
        file("damaged", octets_of("message").replace(CONTENT, CONTENT[:7] + CONTENT[8:] + b"!"))
        by_openssl("cms -digest_create -in content -binary -outform DER -out foreign")
        for name in "damaged", "foreign":
            status, output, _ = tool(f"p7 digest --check {name}")
            self.assertEqual(status, 1)
            self.assertRegex(output, r"FAILED .*does not match.*\(300\)")
        sign("second")
        self.bad("expected digestedData, found signedData", "p7 digest --check message", out="")
        self.bad("CONTENT", "p7 digest", status=2)


if __name__ == "__main__":
    unittest.main()
