# Turns the page of the viewer into a source file: a function that returns it.
# Usage: cmake -DPAGE=<report.html> -DOUTPUT=<file.cpp> -P embed_page.cmake
cmake_minimum_required(VERSION 3.22)

file(READ ${PAGE} page)
string(LENGTH "${page}" length)
set(pieces "")
set(step 12000)  # compilers limit the length of one literal
foreach(begin RANGE 0 ${length} ${step})
  string(SUBSTRING "${page}" ${begin} ${step} piece)
  string(APPEND pieces "R\"morlen~(${piece})morlen~\"\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"report/viewer_page.h\"

std::string_view morlen::ViewerPage()
{
  return {
${pieces}      , ${length}};
}
")
