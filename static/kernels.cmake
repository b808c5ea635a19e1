# Writes OUTPUT, a table of the kernels by name, from the lists in EXPORTS. Entries that only lead back to the core
# (FORWARD in nx2/frame/forward.S) are not in a static library.
file(GLOB lists ${EXPORTS}/*.txt)
file(STRINGS ${FORWARD} forwards REGEX "^\tFORWARD")
set(excluded)
foreach(line ${forwards})
  string(REGEX REPLACE "^\tFORWARD[A-Z_]* ([^ ,]*).*" "\\1" name "${line}")
  list(APPEND excluded ${name})
endforeach()
set(names)
foreach(list ${lists})
  file(STRINGS ${list} some)
  list(APPEND names ${some})
endforeach()
list(REMOVE_ITEM names ${excluded})
list(SORT names) # by bytes, as strcmp
set(rows)
foreach(name ${names})
  string(APPEND rows "KERNEL ${name}\n")
endforeach()
file(WRITE ${OUTPUT} "/* Every kernel by name, names ascending: what static/linked.cpp searches. */
.macro KERNEL name
\t.section .rodata.ork_names, \"a\", @progbits
.Lname_\\name:
\t.asciz \"\\name\"
\t.section .data.rel.ro.ork_kernels, \"aw\", @progbits
\t.quad .Lname_\\name, \\name
.endm
\t.section .data.rel.ro.ork_kernels, \"aw\", @progbits
\t.p2align 4
\t.globl ork_linked_kernels, ork_linked_kernels_end
\t.hidden ork_linked_kernels, ork_linked_kernels_end
ork_linked_kernels:
${rows}\t.section .data.rel.ro.ork_kernels, \"aw\", @progbits
ork_linked_kernels_end:
\t.section .note.GNU-stack, \"\", @progbits
")
