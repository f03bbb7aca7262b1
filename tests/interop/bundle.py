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
    failures = 0
    compared = collections.Counter()
    for block, certificate in zip(blocks, shown):
        expected, actual = oracle.by_openssl(block), oracle.by_tool(certificate)
        compared.update(name for name, fact in expected.items() if fact is not None)
        for name in sorted(expected | actual):
            if expected.get(name) != actual.get(name):
                failures += 1
                print(f"certificate {certificate['index']}: {name}: openssl {expected.get(name)}, "
                      f"zacert {actual.get(name)}")
    print(f"{len(shown)} certificates of {BUNDLE} compared, {failures} differences")
    print("compared: " + ", ".join(f"{name} {count}" for name, count in compared.items()))
    if [c["index"] for c in shown] != list(range(1, len(blocks) + 1)) or len(blocks) < FEWEST:
        sys.exit(f"{len(blocks)} blocks, {len(shown)} shown; at least {FEWEST} are needed")
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
