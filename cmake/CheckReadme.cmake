# Fails unless the README shows the example program as it is built and run.
# Run with -DREADME=<file> -DEXAMPLE=<file>.
file(READ "${README}" readme)
file(READ "${EXAMPLE}" example)
string(FIND "${readme}" "```c\n${example}```" position)
if(position EQUAL -1)
  message(FATAL_ERROR "README.md does not show ${EXAMPLE} as it stands")
endif()
