# Sourced by whatever shows a made-up PC to a program that reads /sys.
# shellcheck shell=bash

# write_machine TEXT FOLDER: the tree of a made-up PC, told in the form of tests/platform/pnp/device_fixture.h. What comes
# behind the first separator of a line is data.
write_machine() {
  local line path='' place name value
  while IFS= read -r line; do
    case $line in
      /*)
        path=${line%% @ *}
        mkdir -p "$2$path"
        place=${line##* @ }
        [ "$place" = "$line" ] && continue
        case $place in
          bus/*) mkdir -p "$2/$place/devices" && ln -sr "$2$path" "$2/$place/devices/${path##*/}" ;;
          *) mkdir -p "$2/$place" && ln -sr "$2$path" "$2/$place/${path##*/}" ;;
        esac ;;
      "  "[!\ ]*)
        line=${line#  }
        name=${line%% *}
        value=${line#"$name" }
        case $value in
          "-> "*) ln -sr "$2${value#-> }" "$2$path/$name" ;;
          # shellcheck disable=SC2059,SC2086 # bytes in hexadecimal
          ": "*) printf "$(printf '\\x%s' ${value#: })" >"$2$path/$name" ;;
          "= "*) printf '%s\n' "${value#= }" >"$2$path/$name" ;;
        esac ;;
    esac
  done <"$1"
}
