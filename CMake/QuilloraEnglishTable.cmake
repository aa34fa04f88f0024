# Writes SOURCE: the bytes of TABLE as the text NAMESPACE::englishTable. A script of quillora_english_table.
file(READ "${TABLE}" bytes HEX)
# Eight bytes a line; numbers, because no form of string literal takes every text of any length.
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
string(REGEX REPLACE "(('[^']*',)('[^']*',)('[^']*',)('[^']*',)('[^']*',)('[^']*',)('[^']*',)('[^']*',))" "\\1\n    " bytes "${bytes}")
file(WRITE "${SOURCE}" "#include <string_view>

namespace ${NAMESPACE} {

namespace {

constexpr char bytes[] = {
    ${bytes}
};

} // namespace

extern std::string_view const englishTable;
std::string_view const englishTable(bytes, sizeof bytes);

} // namespace ${NAMESPACE}
")
