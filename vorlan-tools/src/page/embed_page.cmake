# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# Puts page/page.html, its style, its scripts and Chart.js together and writes the whole as C++:
#   cmake -DFOLDER=... -DCHART_JS=... -DSCRIPTS="a.js b.js" -DOUTPUT=page_parts.cpp -P embed_page.cmake

# Pieces are joined in hexadecimal: CMake's own strings would lose semicolons and brackets.
macro(read_hex path variable)
  file(READ ${path} ${variable} HEX)
endmacro()

# The hexadecimal text of the mark @@NAME@@.
function(hex_of text result)
  file(WRITE ${OUTPUT}.mark "${text}")
  file(READ ${OUTPUT}.mark hex HEX)
  file(REMOVE ${OUTPUT}.mark)
  set(${result} ${hex} PARENT_SCOPE)
endfunction()

read_hex(${FOLDER}/page.html page)
set(scripts "")
separate_arguments(SCRIPTS)
foreach(script ${SCRIPTS})
  read_hex(${FOLDER}/${script} text)
  string(APPEND scripts "${text}")
endforeach()
read_hex(${FOLDER}/page.css style)
read_hex(${CHART_JS} chart)
# The chart library comes last: nothing in it is taken for a mark.
foreach(part "page.css=style" "scripts=scripts" "chart.min.js=chart")
  string(REPLACE "=" ";" part ${part})
  list(GET part 0 name)
  list(GET part 1 variable)
  hex_of("@@${name}@@" mark)
  string(REPLACE "${mark}" "${${variable}}" page "${page}")
endforeach()

string(LENGTH "${page}" digits)
math(EXPR size "${digits} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${page}")
file(WRITE ${OUTPUT} "#include \"page/page_parts.h\"

namespace vorlan_tools {

namespace {

constexpr char kPage[${size}] = {${bytes}};

}  // namespace

std::string_view page_template() { return {kPage, sizeof kPage}; }

}  // namespace vorlan_tools
")
