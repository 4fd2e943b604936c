#!/usr/bin/env bash
# Builds the reference of the public headers as web pages: build/docs/index.html. Fails when something public has no
# text, or a text refers to something that isn't there.
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
rm -rf build/docs && mkdir -p build
doxygen docs/reference/Doxyfile
