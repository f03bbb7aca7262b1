"""Every certificate of the machine's CA bundle: the tool's JSON agrees with `openssl x509`."""

import collections
import re
import sys

from support import oracle

BUNDLE = "/etc/ssl/certs/ca-certificates.crt"
FEWEST = 100
BLOCK = re.compile(rb"-----BEGIN CERTIFICATE-----\r?\n.*?-----END CERTIFICATE-----\r?\n", re.S)


def main():
    with open(BUNDLE, "rb") as bundle:
        blocks = BLOCK.findall(bundle.read())
    shown = oracle.show([BUNDLE])
    failures = []
    if [c["index"] for c in shown] != list(range(1, len(blocks) + 1)):
        failures.append(f"{len(blocks)} blocks, but {len(shown)} certificates shown")
    compared = collections.Counter()
    for block, certificate in zip(blocks, shown):
        expected = oracle.by_openssl(block)
        for line in oracle.differences(expected, oracle.by_tool(certificate)):
            failures.append(f"certificate {certificate['index']}: {line}")
        compared.update(name for name in expected if not name.endswith("_critical"))
    for failure in failures:
        print(failure)
    print(f"{len(shown)} certificates of {BUNDLE} compared with openssl, {len(failures)} differences")
    print("compared: " + ", ".join(f"{name} {count}" for name, count in compared.items()))
    if len(shown) < FEWEST:
        sys.exit(f"at least {FEWEST} certificates are needed")
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
