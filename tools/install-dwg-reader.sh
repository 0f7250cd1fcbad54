#!/usr/bin/env bash
# Installs the package that reads DWG drawings, at the version and with the sums of its lock file. Without it everything
# but DWG drawings works. Quiet and quick when it is there.
set -euo pipefail
cd "$(dirname "$0")/../Host/Dwg/reader"

if ! command -v node >/dev/null || ! command -v npm >/dev/null; then
  echo "install-dwg-reader: node and npm (Debian packages nodejs and npm) are missing; DWG drawings cannot be read" >&2
  exit 1
fi
if [ "$(node -p 'process.versions.node.split(".")[0]')" -lt 18 ]; then
  echo "install-dwg-reader: $(node --version) is older than v18, Debian's, which this was tried with; DWG drawings may not be read" >&2
fi
if [ ! node_modules/.package-lock.json -nt package-lock.json ]; then
  npm ci --no-audit --no-fund --loglevel=error >/dev/null
  touch node_modules/.package-lock.json
fi
