// What C++ can't say: the probe of large stack frames, the guard's functions for indirect calls, and the load
// configuration, by which the system's loader learns of the cookie and of the guard's tables. The linker makes those.

#ifdef __x86_64__
#define NAME(name) name
#define POINTER .quad
#define POINTER_SIZE 8
#else
#define NAME(name) _##name
#define POINTER .long
#define POINTER_SIZE 4
#endif

    .globl @feat.00
    .set @feat.00, 0x801

    .text
    .globl __chkstk
    .def __chkstk; .scl 2; .type 32; .endef
#ifdef __x86_64__
// Touches each page of a frame of rax bytes; the caller moves the stack's pointer.
__chkstk:
    pushq %rcx
    pushq %rax
    leaq 24(%rsp), %rcx
    cmpq $0x1000, %rax
    jb 2f
1:  subq $0x1000, %rcx
    testq %rcx, (%rcx)
    subq $0x1000, %rax
    cmpq $0x1000, %rax
    ja 1b
2:  subq %rax, %rcx
    testq %rcx, (%rcx)
    popq %rax
    popq %rcx
    retq
#else
// Touches each page of a frame of eax bytes and moves the stack's pointer.
__chkstk:
    pushl %ecx
    leal 8(%esp), %ecx
    cmpl $0x1000, %eax
    jb 2f
1:  subl $0x1000, %ecx
    testl %ecx, (%ecx)
    subl $0x1000, %eax
    cmpl $0x1000, %eax
    ja 1b
2:  subl %eax, %ecx
    testl %ecx, (%ecx)
    movl %esp, %eax
    movl %ecx, %esp
    movl (%eax), %ecx
    jmpl *4(%eax)
#endif

// Without the system's guard nothing is checked.
    .globl NAME(guard_check_icall_nop)
    .def NAME(guard_check_icall_nop); .scl 2; .type 32; .endef
NAME(guard_check_icall_nop):
    ret
#ifdef __x86_64__
    .globl guard_dispatch_icall_nop
    .def guard_dispatch_icall_nop; .scl 2; .type 32; .endef
guard_dispatch_icall_nop:
    jmpq *%rax
#endif

    .section .00cfg, "dr"
    .p2align 3
    .globl NAME(__guard_check_icall_fptr)
NAME(__guard_check_icall_fptr):
    POINTER NAME(guard_check_icall_nop)
#ifdef __x86_64__
    .globl __guard_dispatch_icall_fptr
__guard_dispatch_icall_fptr:
    POINTER guard_dispatch_icall_nop
#endif

    .section .rdata, "dr"
    .p2align 3
    .globl NAME(_load_config_used)
NAME(_load_config_used):
    .long 1f - NAME(_load_config_used)
    .zero 20                                    // times, versions, flags
    .zero 5 * POINTER_SIZE                      // thresholds, prefixes
    .zero POINTER_SIZE + 4                      // processors, heap flags
    .zero 4                                     // service pack, load flags
    .zero POINTER_SIZE                          // edit list
    POINTER NAME(__security_cookie)
#ifdef __x86_64__
    .zero 2 * POINTER_SIZE
#else
    POINTER ___safe_se_handler_table
    POINTER ___safe_se_handler_count
#endif
    POINTER NAME(__guard_check_icall_fptr)
#ifdef __x86_64__
    POINTER __guard_dispatch_icall_fptr
#else
    POINTER 0
#endif
    POINTER NAME(__guard_fids_table)
    POINTER NAME(__guard_fids_count)
    .long NAME(__guard_flags)
    .zero 12                                    // code integrity
    POINTER NAME(__guard_iat_table)
    POINTER NAME(__guard_iat_count)
    POINTER NAME(__guard_longjmp_table)
    POINTER NAME(__guard_longjmp_count)
1:
