#!/usr/bin/env bash
# Brings the .ts files in translations/ up to date with the texts in the
# sources (new texts arrive unfinished; translations of unchanged texts stay).
set -euo pipefail
cd "$(dirname "$0")/.."
for ts in translations/*.ts; do
    lupdate -silent -locations none src include -ts "$ts"
done
grep -c 'type="unfinished"' translations/*.ts || true
