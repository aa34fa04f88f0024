help_format() {
    cat <<'END'
./dev format

Rewrites every C++ file of the project in the form that .clang-format describes.
END
}

cxx_files() { git ls-files -- '*.cpp' '*.h'; }

dev_format() {
    need lint
    cxx_files | xargs -r clang-format-19 -i
    git diff --stat -- '*.cpp' '*.h'
}
