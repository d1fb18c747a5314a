#include <algorithm>
#include <iterator>
#include <sstream>

#include "schema/emit/internal/Names.h"

namespace RkXmlSchema {

namespace {

NameSet Words(const char* text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

}  // namespace

const NameSet& Keywords() {
  static const NameSet names = Words(
      "alignas alignof and and_eq asm auto bitand bitor bool break case catch char char8_t char16_t char32_t class "
      "compl concept const consteval constexpr constinit const_cast continue co_await co_return co_yield decltype "
      "default delete do double dynamic_cast else enum explicit export extern false float for friend goto if inline "
      "int long mutable namespace new noexcept not not_eq nullptr operator or or_eq private protected public "
      "register reinterpret_cast requires return short signed sizeof static static_assert static_cast struct switch "
      "template this thread_local throw true try typedef typeid typename union unsigned using virtual void volatile "
      "wchar_t while xor xor_eq");
  return names;
}

const NameSet& Macros() {
  static const NameSet names = Words(
      "AIO_PRIO_DELTA_MAX BC_BASE_MAX BC_DIM_MAX BC_SCALE_MAX BC_STRING_MAX BIG_ENDIAN BOOL_MAX BOOL_WIDTH BUFSIZ "
      "BYTE_ORDER CHARCLASS_NAME_MAX CHAR_BIT CHAR_MAX CHAR_MIN CHAR_WIDTH CLOCKS_PER_SEC CLOCK_BOOTTIME "
      "CLOCK_BOOTTIME_ALARM CLOCK_MONOTONIC CLOCK_MONOTONIC_COARSE CLOCK_MONOTONIC_RAW CLOCK_PROCESS_CPUTIME_ID "
      "CLOCK_REALTIME CLOCK_REALTIME_ALARM CLOCK_REALTIME_COARSE CLOCK_TAI CLOCK_THREAD_CPUTIME_ID "
      "CLONE_CHILD_CLEARTID CLONE_CHILD_SETTID CLONE_DETACHED CLONE_FILES CLONE_FS CLONE_IO CLONE_NEWCGROUP "
      "CLONE_NEWIPC CLONE_NEWNET CLONE_NEWNS CLONE_NEWPID CLONE_NEWTIME CLONE_NEWUSER CLONE_NEWUTS CLONE_PARENT "
      "CLONE_PARENT_SETTID CLONE_PIDFD CLONE_PTRACE CLONE_SETTLS CLONE_SIGHAND CLONE_SYSVSEM CLONE_THREAD "
      "CLONE_UNTRACED CLONE_VFORK CLONE_VM CLOSE_RANGE_CLOEXEC CLOSE_RANGE_UNSHARE COLL_WEIGHTS_MAX CPU_SETSIZE "
      "CSIGNAL DBL_DECIMAL_DIG DBL_DIG DBL_EPSILON DBL_MANT_DIG DBL_MAX DBL_MAX_10_EXP DBL_MAX_EXP DBL_MIN "
      "DBL_MIN_10_EXP DBL_MIN_EXP DBL_TRUE_MIN DECIMAL_DIG DELAYTIMER_MAX DOMAIN E2BIG EACCES EADDRINUSE "
      "EADDRNOTAVAIL EADV EAFNOSUPPORT EAGAIN EALREADY EBADE EBADF EBADFD EBADMSG EBADR EBADRQC EBADSLT EBFONT "
      "EBUSY ECANCELED ECHILD ECHRNG ECOMM ECONNABORTED ECONNREFUSED ECONNRESET EDEADLK EDEADLOCK EDESTADDRREQ EDOM "
      "EDOTDOT EDQUOT EEXIST EFAULT EFBIG EHOSTDOWN EHOSTUNREACH EHWPOISON EIDRM EILSEQ EINPROGRESS EINTR EINVAL "
      "EIO EISCONN EISDIR EISNAM EKEYEXPIRED EKEYREJECTED EKEYREVOKED EL2HLT EL2NSYNC EL3HLT EL3RST ELIBACC ELIBBAD "
      "ELIBEXEC ELIBMAX ELIBSCN ELNRNG ELOOP EMEDIUMTYPE EMFILE EMLINK EMSGSIZE EMULTIHOP ENAMETOOLONG ENAVAIL "
      "ENETDOWN ENETRESET ENETUNREACH ENFILE ENOANO ENOBUFS ENOCSI ENODATA ENODEV ENOENT ENOEXEC ENOKEY ENOLCK "
      "ENOLINK ENOMEDIUM ENOMEM ENOMSG ENONET ENOPKG ENOPROTOOPT ENOSPC ENOSR ENOSTR ENOSYS ENOTBLK ENOTCONN "
      "ENOTDIR ENOTEMPTY ENOTNAM ENOTRECOVERABLE ENOTSOCK ENOTSUP ENOTTY ENOTUNIQ ENXIO EOF EOPNOTSUPP EOVERFLOW "
      "EOWNERDEAD EPERM EPFNOSUPPORT EPIPE EPROTO EPROTONOSUPPORT EPROTOTYPE ERANGE EREMCHG EREMOTE EREMOTEIO "
      "ERESTART ERFKILL EROFS ESHUTDOWN ESOCKTNOSUPPORT ESPIPE ESRCH ESRMNT ESTALE ESTRPIPE ETIME ETIMEDOUT "
      "ETOOMANYREFS ETXTBSY EUCLEAN EUNATCH EUSERS EWOULDBLOCK EXDEV EXFULL EXIT_FAILURE EXIT_SUCCESS EXPR_NEST_MAX "
      "FALSE FD_SETSIZE FILENAME_MAX FLT_DECIMAL_DIG FLT_DIG FLT_EPSILON FLT_EVAL_METHOD FLT_MANT_DIG FLT_MAX "
      "FLT_MAX_10_EXP FLT_MAX_EXP FLT_MIN FLT_MIN_10_EXP FLT_MIN_EXP FLT_RADIX FLT_TRUE_MIN FOPEN_MAX FP_ILOGBNAN "
      "FP_INFINITE FP_LLOGBNAN FP_NAN FP_NORMAL FP_SUBNORMAL FP_ZERO F_LOCK F_OK F_TEST F_TLOCK F_ULOCK "
      "HOST_NAME_MAX HUGE_VAL HUGE_VALF HUGE_VALL I INFINITY INT16_MAX INT16_MIN INT16_WIDTH INT32_MAX INT32_MIN "
      "INT32_WIDTH INT64_MAX INT64_MIN INT64_WIDTH INT8_MAX INT8_MIN INT8_WIDTH INTMAX_MAX INTMAX_MIN INTMAX_WIDTH "
      "INTPTR_MAX INTPTR_MIN INTPTR_WIDTH IOV_MAX LDBL_DECIMAL_DIG LDBL_DIG LDBL_EPSILON LDBL_MANT_DIG LDBL_MAX "
      "LDBL_MAX_10_EXP LDBL_MAX_EXP LDBL_MIN LDBL_MIN_10_EXP LDBL_MIN_EXP LDBL_TRUE_MIN LINE_MAX LITTLE_ENDIAN "
      "LLONG_MAX LLONG_MIN LLONG_WIDTH LOGIN_NAME_MAX LONG_BIT LONG_LONG_MAX LONG_LONG_MIN LONG_MAX LONG_MIN "
      "LONG_WIDTH L_INCR L_SET L_XTND L_ctermid L_cuserid L_tmpnam MAXFLOAT MAX_CANON MAX_INPUT MB_CUR_MAX "
      "MB_LEN_MAX MOD_CLKA MOD_CLKB MOD_ESTERROR MOD_FREQUENCY MOD_MAXERROR MOD_MICRO MOD_NANO MOD_OFFSET "
      "MOD_STATUS MOD_TAI MOD_TIMECONST MQ_PRIO_MAX M_1_PI M_2_PI M_2_SQRTPI M_E M_LN10 M_LN2 M_LOG10E M_LOG2E M_PI "
      "M_PI_2 M_PI_4 M_SQRT1_2 M_SQRT2 NAME_MAX NAN NDEBUG NFDBITS NGROUPS_MAX NL_ARGMAX NL_LANGMAX NL_MSGMAX "
      "NL_NMAX NL_SETMAX NL_TEXTMAX NSIG NULL NZERO OVERFLOW PATH_MAX PDP_ENDIAN PIPE_BUF PLOSS PTRDIFF_MAX "
      "PTRDIFF_MIN PTRDIFF_WIDTH P_tmpdir RAND_MAX RENAME_EXCHANGE RENAME_NOREPLACE RENAME_WHITEOUT RE_DUP_MAX "
      "RTSIG_MAX R_OK SCHAR_MAX SCHAR_MIN SCHAR_WIDTH SEEK_CUR SEEK_DATA SEEK_END SEEK_HOLE SEEK_SET SEM_VALUE_MAX "
      "SHRT_MAX SHRT_MIN SHRT_WIDTH SIGABRT SIGALRM SIGBUS SIGCHLD SIGCLD SIGCONT SIGFPE SIGHUP SIGILL SIGINT SIGIO "
      "SIGIOT SIGKILL SIGPIPE SIGPOLL SIGPROF SIGPWR SIGQUIT SIGRTMAX SIGRTMIN SIGSEGV SIGSTKFLT SIGSTKSZ SIGSTOP "
      "SIGSYS SIGTERM SIGTRAP SIGTSTP SIGTTIN SIGTTOU SIGURG SIGUSR1 SIGUSR2 SIGVTALRM SIGWINCH SIGXCPU SIGXFSZ "
      "SIG_ATOMIC_MAX SIG_ATOMIC_MIN SIG_ATOMIC_WIDTH SIG_BLOCK SIG_DFL SIG_ERR SIG_HOLD SIG_IGN SIG_SETMASK "
      "SIG_UNBLOCK SING SIZE_MAX SIZE_WIDTH SNAN SNANF SNANL SSIZE_MAX STA_CLK STA_CLOCKERR STA_DEL STA_FLL "
      "STA_FREQHOLD STA_INS STA_MODE STA_NANO STA_PLL STA_PPSERROR STA_PPSFREQ STA_PPSJITTER STA_PPSSIGNAL "
      "STA_PPSTIME STA_PPSWANDER STA_RONLY STA_UNSYNC STDERR_FILENO STDIN_FILENO STDOUT_FILENO TIMER_ABSTIME "
      "TIME_UTC TLOSS TMP_MAX TRUE TTY_NAME_MAX UCHAR_MAX UCHAR_WIDTH UINT16_MAX UINT16_WIDTH UINT32_MAX "
      "UINT32_WIDTH UINT64_MAX UINT64_WIDTH UINT8_MAX UINT8_WIDTH UINTMAX_MAX UINTMAX_WIDTH UINTPTR_MAX "
      "UINTPTR_WIDTH ULLONG_MAX ULLONG_WIDTH ULONG_LONG_MAX ULONG_MAX ULONG_WIDTH UNDERFLOW USHRT_MAX USHRT_WIDTH "
      "WCHAR_MAX WCHAR_MIN WCHAR_WIDTH WCONTINUED WEOF WEXITED WINT_MAX WINT_MIN WINT_WIDTH WNOHANG WNOWAIT "
      "WORD_BIT WSTOPPED WUNTRACED W_OK XATTR_LIST_MAX XATTR_NAME_MAX XATTR_SIZE_MAX X_OK alloca assert errno i386 "
      "linux major makedev math_errhandling minor offsetof sched_priority setjmp signal stderr stdin stdout unix "
      "va_arg va_copy va_end va_start");
  return names;
}

bool IsMacro(const std::string& name) {
  static constexpr const char* kFamilies[] = {"ADJ_", "ATOMIC_", "INT_", "LC_", "PTHREAD_", "SCHED_", "SYS_", "UINT_"};
  const auto begins = [&](const char* family) { return name.rfind(family, 0) == 0; };
  return Macros().count(name) != 0 || std::any_of(std::begin(kFamilies), std::end(kFamilies), begins);
}

const NameSet& GlobalNames() {
  static const NameSet names = Words(
      "a64l arc4random l64a strfromf32x strfromf64x strtof32x strtof64x wcstof32x wcstof64x RkXmlLib16 RkXmlLib16Data "
      "RkXmlSchema std Xsd AbstractMember AttributeModel BuiltIn ClassData ClassModel "
      "ElementModel EnumerationModel FindEnumeration GroupMember INillable MemberModel ObjectMember PrefixModel "
      "RkVariant SchemaModel SimpleTypeData Span ValueMember ValueModel WildcardMember WildcardModel "
      "GetDefaultContext NewModelCollection NewModelObject FILE abort abs accept access acct acos acosh alarm "
      "alloca asctime asin asinh asprintf atan atanh atexit atof atoi atol atoll basename bcmp bcopy bind brk "
      "bsearch btowc bzero calloc ceil chdir chmod chown chroot clearenv clearerr clock clone close confstr connect "
      "cos cosh creat crypt ctermid ctime cuserid daemon daylight difftime dirent div dlopen dlsym dprintf drand48 "
      "drem dup duplocale dysize ecvt environ erand48 erf erfc execl exit exp exp2 expm1 fabs fchmod fclose "
      "fcloseall fcntl fcvt fdim fdopen feof ferror fflush ffs ffsl ffsll fgetc fgetpos fgetpos64 fgets fgetwc "
      "fgetws fileno finite flock flockfile floor fma fmax fmemopen fmin fmod fopen fopen64 fopencookie fork "
      "fprintf fputc fputs fputwc fputws fread free freelocale freopen freopen64 frexp fscanf fseek fseeko fseeko64 "
      "fsetpos fsetpos64 ftell ftello ftello64 ftrylockfile ftw funlockfile fwide fwprintf fwrite fwscanf gamma "
      "gcvt getc getchar getcpu getdate getdelim getenv getline getloadavg getopt getpid getpt getsubopt getw getwc "
      "getwchar glob gmtime grantpt group hostent htons hypot iconv index initstate ioctl iovec isalnum isalpha "
      "isascii isblank iscntrl isctype isdigit isgraph islower isnan isprint ispunct isspace isupper isxdigit "
      "itimerspec itimerval j0 j1 jn jrand48 kill labs lcong48 lconv ldexp ldiv lgamma linger link listen llabs "
      "lldiv localeconv localtime lockf log log10 log2 logb lrand48 lseek malloc mblen mbrlen mbrtowc mbsinit "
      "mbsnrtowcs mbsrtowcs mbstowcs mbtowc memccpy memchr memcmp memcpy memfrob memmem memmove mempcpy memrchr "
      "memset mkdir mkdtemp mkostemp mkostemp64 mkostemps mkostemps64 mkstemp mkstemp64 mkstemps mkstemps64 mktemp "
      "mktime modf mrand48 msync nan nanosleep nearbyint newlocale nice nrand48 obstack open opendir openlog optarg "
      "optind passwd pause pclose perror pipe poll popen pow pread printf profil pselect ptsname putc putchar "
      "putenv puts putw putwc putwchar pwrite qecvt qfcvt qgcvt qsort raise rand random rawmemchr read readdir "
      "readlink realloc reallocarray realpath recv regcomp regexec remainder remove remquo rename renameat "
      "renameat2 revoke rewind rindex rint rmdir round rpmatch rusage scalb scalbn scanf seed48 seekdir select send "
      "setbuf setbuffer setenv setlinebuf setlocale setns setstate setvbuf shutdown sigaction sigevent significand "
      "sigset sin sinh sleep snprintf sockaddr socket splice sprintf sqrt srand srand48 srandom sscanf stat stpcpy "
      "stpncpy strcasecmp strcasestr strcat strchr strchrnul strcmp strcoll strcpy strcspn strdup strerror strfromd "
      "strfromf strfromf128 strfromf32 strfromf64 strfroml strfry strftime strlen strncasecmp strncat strncmp "
      "strncpy strndup strnlen strpbrk strptime strrchr strsep strsignal strspn strstr strtod strtof strtof128 "
      "strtof32 strtof64 strtok strtol strtold strtoll strtoq strtoul strtoull strtouq strverscmp strxfrm swab "
      "swprintf swscanf symlink sync syslog system tan tanh tdelete tee telldir tempnam tfind tgamma time timegm "
      "timelocal timespec timeval timex timezone tm tmpfile tmpfile64 tmpnam toascii tolower toupper trunc truncate "
      "tsearch ttyname tzname tzset ualarm uint ulong umask ungetc ungetwc unlink unlockpt unsetenv unshare "
      "uselocale ushort usleep utime utimes valloc vasprintf vdprintf vfork vfprintf vfscanf vfwprintf vfwscanf "
      "vhangup vprintf vscanf vsnprintf vsprintf vsscanf vswprintf vswscanf vwprintf vwscanf wait wcpcpy wcpncpy "
      "wcrtomb wcscasecmp wcscat wcschr wcschrnul wcscmp wcscoll wcscpy wcscspn wcsdup wcsftime wcslen wcsncasecmp "
      "wcsncat wcsncmp wcsncpy wcsnlen wcsnrtombs wcspbrk wcsrchr wcsrtombs wcsspn wcsstr wcstod wcstof wcstof128 "
      "wcstof32 wcstof64 wcstok wcstol wcstold wcstoll wcstombs wcstoq wcstoul wcstoull wcstouq wcswcs wcswidth "
      "wcsxfrm wctob wctomb wcwidth winsize wmemchr wmemcmp wmemcpy wmemmove wmempcpy wmemset wprintf write wscanf "
      "y0 y1 yn");
  return names;
}

const NameSet& LibraryNames() {
  static const NameSet names = Words(
      "CAttributeCol CAttributeInfo CBigInteger CBinaryData CClassfactoryBase CDateTime CDateTimeSpan CDecimal "
      "CElement CElementCol CElementInfo CEncoder CFile CFileName CIterator CJsonContext CMember CModelClass "
      "CModelCollection CModelCollectionBase CModelObject CParentElementInfo CPrimitiveRestrictions CPropertySet "
      "CRareValue CReadLimits CRegEx CRkException CSerializationContext CSharedName CSimpleType CSimpleTypeModel "
      "CSmartPtr CStringBuffer CTextStream CValueCollection CVocabulary CWhitespaceUtils CXmlAttribute "
      "CXmlCollection CXmlCollectionBase CXmlDocument CXmlElement CXmlExpandedName CXmlGeneratedClass CXmlName "
      "CXmlObjectBase "
      "CXmlObjectCollection CXmlObjectHelper CXmlText CXmlTypeCollection CXmlWriter EOLType NewFor "
      "NewModelCollection NewModelObject kBuiltInTypes kClasses kElements kAttributeModels kInstanceNamespace "
      "kSchema kSchemaNamespace kSimpleTypes");
  return names;
}

const NameSet& LibraryProperties() {
  static const NameSet names = Words(
      "Base ClassAttributeInfo ClassElementInfo ClassElementInfoCount ClassInfo Declaration ElementName "
      "ElementNameRef Model Namespace Nil NilFlag RefCount Selected TargetNamespace");
  return names;
}

}  // namespace RkXmlSchema
