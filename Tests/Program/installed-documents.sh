#!/bin/sh
# Installs the documents into a folder of its own and checks their links: installed-documents.sh CMAKE BUILD DOCDIR
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
DESTDIR=$folder "$1" --install "$2" --component documentation >/dev/null
python3 "$(dirname "$0")/../../docs/guide/run-guide.py" --links "$folder$3"
