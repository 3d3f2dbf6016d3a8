# Sourced by web/serve.sh and test.sh, behind tools/packages.sh: what the page to
# play on needs beside the engine.

# Node and npm: whatever is there will do (Debian's Node is 18, and there are other
# sources), so Debian's packages are installed only where a program is missing.
need_node() {
  local missing=()
  command -v node >/dev/null || missing+=(nodejs)
  command -v npm >/dev/null || missing+=(npm)
  [ ${#missing[@]} -eq 0 ] || need_packages "${missing[@]}"
}

# What builds the page and the engine in it.
need_page_packages() {
  need_packages cmake ninja-build python3 emscripten && need_node
}

# What tests the page: a browser without a screen.
need_page_test_packages() {
  need_node && need_packages chromium
}
