# Completion of rkxml for bash.
_rkxml() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} word command=
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in convert | show) command=$word && break ;; esac
  done
  compopt +o default
  case $previous in
    --from | --to) mapfile -t COMPREPLY < <(compgen -W 'xml json finf' -- "$current") && return ;;
    --indent) mapfile -t COMPREPLY < <(compgen -W 'tab 2 4' -- "$current") && return ;;
    --eol) mapfile -t COMPREPLY < <(compgen -W 'lf crlf' -- "$current") && return ;;
    --mode) mapfile -t COMPREPLY < <(compgen -W '0 1 2' -- "$current") && return ;;
    --limits) mapfile -t COMPREPLY < <(compgen -W 'none depth= nodes= characters= inflated-bytes=' -- "$current") && return ;;
    --encoding) mapfile -t COMPREPLY < <(compgen -W 'utf-8 utf-16 wide' -- "$current") && return ;;
  esac
  local words='convert show --help --version'
  case $command in
    convert) words='--from --to --pretty --compact --indent --eol --encoding --mode --root --declaration --typed --gzip --limits --help' ;;
    show) words='--from --mode --root --limits --octets --help' ;;
  esac
  if [ -n "$command" ] && [ "${current:0:1}" != - ]; then
    compopt -o default
    COMPREPLY=()
  else
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  fi
}
complete -F _rkxml -o default rkxml
