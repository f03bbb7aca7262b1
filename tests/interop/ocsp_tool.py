"""`zacert ocsp` and `zacert show`: requests between openssl and the tool, responses of its own."""

import json
import re
import unittest

from support.messages import elements, good, inside, tool
from support.peers import FOLDER, attempt, file, octets_of, run
from support.token import make_token, uri

SERIALS = {"user": "8a", "gone": "00c0ffee", "new": "77", "ocsp": "05", "any": "06"}
ALL = "user.pem gone.pem new.pem"
CAS = {"ca": "rsa-2048", "other": "p256", "sm2": "sm2"}
INDEX = (b"V\t300101000000Z\t\t8A\tunknown\t/CN=x\n"
         b"R\t300101000000Z\t260101000000Z,keyCompromise\t00C0FFEE\tunknown\t/CN=x\n")


def ask(options="", certificates=ALL, out="q"):
    good(f"ocsp ask --issuer ca.pem {options} --out {out} {certificates}")


def answer(options="--key ca.key", request="q", ca="ca"):
    done = tool(f"ocsp answer --issuer {ca}.pem --crl {ca}.crl --serials serials {options} --out r {request}")
    assert done == (0, "", ""), done


def shown(name):
    result, = json.loads(good(f"show --format json {name}"))
    return result


class OcspTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        for name in (*CAS, *SERIALS):
            good(f"key new --type {CAS.get(name, 'p256')} --out {name}.key")
        for name in CAS:
            good(f"cert issue --self --key {name}.key --subject CN={name} --profile ca --out {name}.pem")
        for name in SERIALS:
            cls.issue(name, "ca", name)
        cls.issue("alien", "other", "ocsp")
        cls.issue("under", "sm2", "user")
        for ca in CAS:
            revoked = "--revoke-cert gone.pem --reason keyCompromise" if ca == "ca" else ""
            good(f"crl make --ca {ca}.pem --ca-key {ca}.key {revoked} --out {ca}.crl")
        good("crl make --ca ca.pem --ca-key ca.key --number 9 --delta 3 --out delta.crl")
        file("serials", b"# issued\n8a\n00c0ffee\n")
        file("index", INDEX)

    @staticmethod
    def issue(name, ca, like):
        good(f"request new --key {like}.key --subject CN={name} --out csr")
        good(f"cert issue --request csr --ca {ca}.pem --ca-key {ca}.key --serial {SERIALS[like]} "
             f"--profile {'ocsp' if like == 'ocsp' else 'server'} --out {name}.pem")

    def bad(self, expected, command):
        status, output, problems = tool(command)
        self.assertEqual((status, output, problems.count("\n")), (1, "", 1), problems)
        self.assertRegex(problems, expected)

    def assert_check(self, expected, *lines, arguments="--request q r"):
        status, output, problems = tool(f"ocsp check --issuer ca.pem {arguments}")
        self.assertEqual(status, expected, output + problems)
        for line in lines:
            self.assertRegex(output + problems, f"(?m){line}")

    def test_openssl_reads_and_answers(self):
        for options in ("", "--no-nonce", "--digest sha256"):
            with self.subTest(options):
                ask(options)
                text = run("openssl ocsp -reqin q -req_text").decode()
                self.assertEqual(re.findall(r"Serial Number: (\w+)", text), ["8A", "C0FFEE", "77"])
                self.assertEqual("Nonce" in text, options != "--no-nonce")
                run("openssl ocsp -index index -CA ca.pem -rsigner ca.pem -rkey ca.key -reqin q -respout r")
                text = run("openssl ocsp -respin r -CAfile ca.pem -resp_text").decode()
                self.assertEqual(re.findall(r"Cert Status: (\w+)", text), ["good", "revoked", "unknown"])
                nonce = shown("q")["extensions"]
                self.assertTrue(not nonce or nonce[0]["hex"][4:].upper() in text)
        self.bad("expected an OCSP response in the library's own form: .* RFC 6960", "ocsp check --issuer ca.pem r")

    def test_openssl_asks(self):
        for options, digest in (("", "SHA-1"), ("-no_nonce", "SHA-1"), ("-sha256", "SHA-256")):
            with self.subTest(options):
                run(f"openssl ocsp {options} -issuer ca.pem -cert user.pem -cert gone.pem -cert new.pem -reqout q")
                answer()
                response = shown("r")
                self.assertEqual([(a["serial"], a["status"], a["hash_algorithm"]["name"]) for a in response["answers"]],
                                 [("8a", "good", digest), ("c0ffee", "revoked", digest), ("77", "unknown", digest)])
                self.assertEqual(response["extensions"], shown("q")["extensions"])
                self.assertEqual(response["answers"][1]["reason"], "keyCompromise")
                self.assert_check(1, "FAILED  status: revoked at .*, keyCompromise", "FAILED  status: unknown")
                self.assert_check(0, arguments="--request q r user.pem")
        run("openssl ocsp -issuer ca.pem -cert user.pem -signer ca.pem -signkey ca.key -reqout q")
        self.bad("signed as RFC 6960 has it", "show q")

    def test_own_answers(self):
        ask("--digest sha256", "user.pem")
        for options, name in (("--key ca.key", "ca"), ("--signer ocsp.pem --key ocsp.key", "ocsp"),
                              ("--key ca.key --pem --chain other.pem --next-update 1", "ca")):
            with self.subTest(options):
                answer(options)
                self.assert_check(0, f"ok      signature of CN={name}", "ok      nonce: that of the request",
                                  "ok      this update: ", "^r: good")
                self.assert_check(0, "note    nonce: no request", arguments="r user.pem")
        # The octets of the response as another program sees them.
        answer()
        basic = elements(elements(elements(inside(octets_of("r"))[1][1])[0][1])[1][1])[0][1]
        for name, octets in (("data", elements(basic)[0][2]), ("signature", elements(basic)[2][1])):
            file(name, octets)
        file("ca.pub", run("openssl x509 -in ca.pem -noout -pubkey"))
        run("openssl dgst -sha256 -verify ca.pub -signature signature data")
        self.assertIn(b"Error parsing response", attempt("openssl ocsp -respin r -issuer ca.pem -cert user.pem")[1])
        # An SM2 key alike.
        good("ocsp ask --issuer sm2.pem --out q2 under.pem")
        answer("--key sm2.key", "q2", "sm2")
        self.assertIn("SM2-with-SM3", good("ocsp check --issuer sm2.pem --request q2 r under.pem"))
        file("r", octets_of("r")[:-1] + bytes([octets_of("r")[-1] ^ 1]))
        self.assertEqual(tool("ocsp check --issuer sm2.pem r")[0], 1)

    def test_token(self):
        make_token(FOLDER)
        key = f"--key {uri('object=rsa')} --password-file pin"
        good("request new --key user.key --subject CN=held --out csr")
        good(f"cert issue --self {key} --subject CN=token --profile ca --out token.pem")
        good(f"cert issue --request csr --ca token.pem {key} --serial 8a --profile server --out held.pem")
        good(f"crl make --ca token.pem {key} --out token.crl")
        good("ocsp ask --issuer token.pem --out q3 held.pem")
        answer(key, "q3", "token")
        good("ocsp check --issuer token.pem --request q3 r held.pem")

    def test_checks_fail(self):
        ask(certificates="user.pem")
        answer()
        ask(certificates="user.pem", out="later")
        ask("--no-nonce", "user.pem", "silent")
        ask(certificates="new.pem", out="another")
        self.assertEqual(tool("ocsp check --issuer other.pem r")[0], 1)
        for line, arguments in (
                ("FAILED  nonce: not that of the request", "--request later r"),
                ("FAILED  nonce: not that of the request", "--request silent r"),
                ("FAILED  answers: there is none for serial 77", "--request another r"),
                ("FAILED  answers: there is none for CN=gone", "r gone.pem"),
                ("FAILED  next update: was due at", "--at 2037-01-01 r"),
                ("FAILED  this update: later, at", "--at 2020-01-01 r"),
                ("FAILED  signature: there is no certificate", "--signer ocsp.pem r"),
                ("alien.pem: the certificate is not one that the issuer signed", "r alien.pem")):
            self.assert_check(1, line, arguments=arguments)
        answer(request="silent")
        self.assert_check(0, "note    nonce: the response has none, so it may be an old one")
        good("ocsp ask --issuer other.pem --out foreign alien.pem")
        answer(request="foreign")
        self.assert_check(1, "FAILED  issuer: not the one given", "FAILED  status: unknown", arguments="r")
        answer("--signer ocsp.pem --key ocsp.key", "silent")
        self.assert_check(1, "FAILED  validity: expired", arguments="--at 2037-01-01 r")

    def test_others_sign(self):
        """Good signatures by those who may not answer for this CA, their certificates in the response."""
        ask("--no-nonce", "user.pem")
        good("cert issue --self --key any.key --subject CN=any --profile ca --out fake.pem")
        good("crl make --ca fake.pem --ca-key any.key --out fake.crl")
        answer("--key any.key --chain any.pem", ca="fake")
        self.assert_check(1, "ok      signature of CN=any", "FAILED  responder: lacks", arguments="r")
        answer("--signer alien.pem --key ocsp.key", ca="other")
        self.assert_check(1, "ok      signature of CN=alien", "FAILED  trust: ", arguments="r")

    def test_answers_refused(self):
        ask()
        for expected, options in (
                ("any.pem: purpose of CN=any: may not be used for ocsp", "--signer any.pem --key any.key q"),
                ("alien.pem: trust: ", "--signer alien.pem --key new.key q"),
                ("the private key is not that", "--key ocsp.key q"),
                ("CRL: of another issuer", "--key ca.key --crl other.crl q"),
                ("CRL: a delta CRL", "--key ca.key --crl delta.crl q"),
                ("missing: expected an OCSP request", "--key ca.key missing")):
            crl = "" if "--crl" in options else "--crl ca.crl"
            self.bad(expected, f"ocsp answer --issuer ca.pem {crl} --out none {options}")
        self.bad("not one that the issuer signed", "ocsp ask --issuer ca.pem --out none alien.pem")
        self.assertEqual(list(FOLDER.glob("none*")), [])

    def test_status_only(self):
        ask()
        for octets in (b"", b"\x30\x03\x0a\x01\x03", octets_of("q")[:-3], octets_of("ca.pem")):
            file("wrong", octets)
            self.bad("wrong: ", "ocsp answer --issuer ca.pem --crl ca.crl --key ca.key --out r wrong")
            self.assertIn(b"malformedrequest (1)", attempt("openssl ocsp -respin r")[1])
            self.assertEqual((shown("r")["status"], shown("r")["status_name"]), (1, "malformedRequest"))
        file("r", bytes.fromhex("30030a0103"))
        self.assert_check(1, r"response status: tryLater \(3\)", arguments="r")

    def test_show(self):
        ask("--pem")
        answer("--signer ocsp.pem --key ocsp.key --pem")
        self.assertEqual([c["serial"] for c in shown("q")["certificates"]], ["8a", "c0ffee", "77"])
        self.assertEqual((shown("q")["kind"], shown("r")["kind"]), ("ocsp_request", "ocsp_response"))
        for part in ("serial 8a\n", "OCSP nonce\n", 'Status unknown, "not issued"', "CN=ocsp, serial 05"):
            self.assertIn(part, good("show q r"))
        self.assertIn("2 certificates, CRLs, requests, messages and OCSP, 2 decoded", good("show --format table q r"))
        self.bad("zacert ocsp check", "verify r")

    def test_damage(self):
        """Whatever octet is changed, the response is good no more; and cut files are refused."""
        ask(certificates="user.pem")
        answer()
        octets = octets_of("r")
        for i in range(0, len(octets), 3):
            file("r", octets[:i] + bytes([octets[i] ^ 0x21]) + octets[i + 1:])
            self.assert_check(1, arguments="r")
            self.bad("expected", "show " + file("cut", octets[:i]))


if __name__ == "__main__":
    unittest.main(verbosity=2)
