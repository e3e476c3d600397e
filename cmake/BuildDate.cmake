# Writes OUT with the day of the build (VIRN_BUILD_DATE "YYYY-MM-DD"). The file is rewritten only when
# the day changes, so that a build on the same day recompiles nothing.
string(TIMESTAMP day "%Y-%m-%d")
file(CONFIGURE OUTPUT "${OUT}" CONTENT "#define VIRN_BUILD_DATE \"${day}\"\n" @ONLY)
