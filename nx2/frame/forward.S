/* SPDX-License-Identifier: MIT */
/* Forwarding entries: exports without code of their own, each one jump to a routine of the core, the arguments and the
   return address untouched. forward.cpp has the resolver. */

	.text

/* FORWARD export, import: the names differ, so the run-time's own lazily bound jump slot serves. */
.macro FORWARD export, import
	.globl \export
	.type \export, @function
	.p2align 4
\export:
	.cfi_startproc
	jmp \import@PLT
	.cfi_endproc
	.size \export, . - \export
.endm

/* FORWARD_SAME routine: the core's routine has the very name of the export. The run-time would look that name up in the
   order of loading and may well bind the entry to itself, so these entries jump through slots of the library's own. A slot
   starts out at its binder, which hands (name, entry, slot) to the resolver. */
.macro FORWARD_SAME routine
	.globl \routine
	.type \routine, @function
	.p2align 4
\routine:
.Lentry_\routine:
	.cfi_startproc
	jmp *.Lslot_\routine(%rip)
.Lbind_\routine:
	leaq .Lname_\routine(%rip), %r10
	leaq .Lslot_\routine(%rip), %r11
	jmp .Lbind
	.cfi_endproc
	.size \routine, . - \routine

	.pushsection ork_forward_slots, "aw", @progbits
	.p2align 3
.Lslot_\routine:
	.quad .Lbind_\routine
	.popsection

	/* The entry's address stands before its name, as a distance: an address would be a relocation. */
	.pushsection .rodata.ork_forward_names, "a", @progbits
	.p2align 3
	.quad .Lentry_\routine - .
.Lname_\routine:
	.asciz "\routine"
	.popsection
.endm

/* %r10: name, %r11: slot. Keeps every register that may carry an argument, as the arguments belong to another routine. */
	.p2align 4
	.type .Lbind, @function
.Lbind:
	.cfi_startproc
	pushq %rax
	.cfi_adjust_cfa_offset 8
	pushq %rdi
	.cfi_adjust_cfa_offset 8
	pushq %rsi
	.cfi_adjust_cfa_offset 8
	pushq %rdx
	.cfi_adjust_cfa_offset 8
	pushq %rcx
	.cfi_adjust_cfa_offset 8
	pushq %r8
	.cfi_adjust_cfa_offset 8
	pushq %r9
	.cfi_adjust_cfa_offset 8
	subq $128, %rsp /* 16-byte aligned now: eight pushes with the return address */
	.cfi_adjust_cfa_offset 128
	movaps %xmm0, (%rsp)
	movaps %xmm1, 16(%rsp)
	movaps %xmm2, 32(%rsp)
	movaps %xmm3, 48(%rsp)
	movaps %xmm4, 64(%rsp)
	movaps %xmm5, 80(%rsp)
	movaps %xmm6, 96(%rsp)
	movaps %xmm7, 112(%rsp)
	movq %r10, %rdi
	leaq -8(%r10), %rsi
	addq (%rsi), %rsi
	movq %r11, %rdx
	call ork_forward_resolve
	movq %rax, %r11
	movaps (%rsp), %xmm0
	movaps 16(%rsp), %xmm1
	movaps 32(%rsp), %xmm2
	movaps 48(%rsp), %xmm3
	movaps 64(%rsp), %xmm4
	movaps 80(%rsp), %xmm5
	movaps 96(%rsp), %xmm6
	movaps 112(%rsp), %xmm7
	addq $128, %rsp
	.cfi_adjust_cfa_offset -128
	popq %r9
	.cfi_adjust_cfa_offset -8
	popq %r8
	.cfi_adjust_cfa_offset -8
	popq %rcx
	.cfi_adjust_cfa_offset -8
	popq %rdx
	.cfi_adjust_cfa_offset -8
	popq %rsi
	.cfi_adjust_cfa_offset -8
	popq %rdi
	.cfi_adjust_cfa_offset -8
	popq %rax
	.cfi_adjust_cfa_offset -8
	jmp *%r11
	.cfi_endproc
	.hidden ork_forward_resolve

	FORWARD_SAME ork_blas_lp64_caxpy
	FORWARD_SAME ork_blas_lp64_ccopy
	FORWARD_SAME ork_blas_lp64_cdotu
	FORWARD_SAME ork_blas_lp64_cscal
	FORWARD_SAME ork_blas_lp64_daxpy
	FORWARD_SAME ork_blas_lp64_dcopy
	FORWARD_SAME ork_blas_lp64_ddot
	FORWARD_SAME ork_blas_lp64_dscal
	FORWARD_SAME ork_blas_lp64_saxpy
	FORWARD_SAME ork_blas_lp64_scopy
	FORWARD_SAME ork_blas_lp64_sdot
	FORWARD_SAME ork_blas_lp64_sscal
	FORWARD_SAME ork_blas_lp64_zaxpy
	FORWARD_SAME ork_blas_lp64_zcopy
	FORWARD_SAME ork_blas_lp64_zdotu
	FORWARD_SAME ork_blas_lp64_zscal

	FORWARD ork_conv_nx2_CopyTask, ork_conv_copytask
	FORWARD ork_conv_nx2_DeleteTask, ork_conv_deletetask
	FORWARD ork_conv_nx2_EditTask, ork_conv_edittask
	FORWARD ork_conv_nx2_Exec, ork_conv_exec
	FORWARD ork_conv_nx2_ExecX, ork_conv_execx
	FORWARD ork_conv_nx2_NewTask, ork_conv_newtask
	FORWARD ork_conv_nx2_NewTaskX, ork_conv_newtaskx

	.section .note.GNU-stack, "", @progbits
