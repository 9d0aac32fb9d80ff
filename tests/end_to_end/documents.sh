#!/usr/bin/env bash
# The Markdown does not rot: every link and every picture leads to a file, every file named in backquotes is there, every
# option of our tools that is shown is known, and every picture is shown somewhere.
set -u
cd "$(dirname "$0")/../.." || exit 1
failures=0
fail() {
  echo "FAILED: $*" >&2
  failures=$((failures + 1))
}

documents=(*.md docs/*.md)
for document in "${documents[@]}"; do
  folder=$(dirname "$document")
  while read -r target; do
    case $target in http*://* | '#'*) continue ;; esac
    [ -e "$folder/${target%%#*}" ] || fail "$document: link to $target"
  done < <(grep -oP '\]\(\K[^)]+' "$document")
  # Paths below a folder of this repository, and bare names of sources and scripts.
  while read -r name; do
    case $name in
      src/* | tests/* | tools/* | docs/* | server/* | resources/* | packaging/* | cmake/* | bench/* | fuzz/* | .ci/*)
        case $name in *NAME*) continue ;; esac
        [ -e "${name%%[ :]*}" ] || fail "$document: no $name" ;;
      *.cpp | *.h | *.php | *.cmake | *.sh)
        case $name in *NAME*) continue ;; esac
        [ -n "$(find src tests tools server cmake bench fuzz packaging -name "${name##*/}" -print -quit)" ] ||
          fail "$document: no $name" ;;
    esac
  done < <(grep -v '^```' "$document" | grep -oP '`\K[^`\s]+(?=`)')
done

for picture in docs/pictures/*.png; do
  grep -q "${picture#docs/}" "${documents[@]}" || fail "$picture is shown nowhere"
done

# The captions of the search commands name the site that they open by default, and so does the guide.
site=$(sed -nE 's|.*QUORVANE_SEARCH_SITE "https://([^/"]*).*|\1|p' cmake/addresses.cmake)
caption=$(grep -ohE '"Search [A-Z][a-z]+ For' src/database/frm_lookup.cpp | cut -d' ' -f2)
case $site in *".${caption,,}."*) ;; *) fail "'Search $caption' opens $site" ;; esac
grep -q "\`$site\`" docs/guide.md || fail "docs/guide.md does not name $site"

# Options of our tools in the text, against their own help.
for tool in quorvane-db quorvane-list; do
  help=$("${QUORVANE_BIN:?}/$tool" --help) || fail "$tool --help"
  while read -r option; do
    case $help in *"$option"*) ;; *) fail "$tool does not know $option" ;; esac
  done < <(grep -hoP "$tool [^\`|]*" "${documents[@]}" | grep -oP -- '--[a-z-]+' | sort -u)
done

[ $failures = 0 ] && echo "documents: ok"
exit $((failures > 0))
