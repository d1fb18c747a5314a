# Completion of rkxml for bash.

# Directories and the files of a known ending, with or without .gz behind it; any file where there are none.
_rkxml_files() {
  local file name endings=" .xml .xsd .xsl .xslt .rng .wsdl .wadl .xhtml .svg .mml .smil .ttml .gpx .kml .gml .tcx .osm .rss
    .atom .rdf .owl .skos .xbrl .dae .x3d .musicxml .plist .fodt .fods .fodp .dbk .dita .ditamap .tei
    .opf .ncx .xlf .xliff .tmx .xmi .graphml .gexf .xspf .xaml .csproj .vcxproj .resx .nuspec .ui .qrc
    .jnlp .json .finf "
  compopt -o filenames -o default
  COMPREPLY=()
  while IFS= read -r file; do
    name=${file##*/}
    name=${name%.gz}
    if [ -d "$file" ] || [[ $name == *.* && $endings == *[[:space:]].${name##*.}[[:space:]]* ]]; then
      COMPREPLY+=("$file")
    fi
  done < <(compgen -f -- "$1")
}

_rkxml() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} word command=
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in convert | show | check | generate | split) command=$word && break ;; esac
  done
  compopt +o default
  case $previous in
    --from | --to) mapfile -t COMPREPLY < <(compgen -W 'xml json finf' -- "$current") && return ;;
    --indent) mapfile -t COMPREPLY < <(compgen -W 'tab 2 4' -- "$current") && return ;;
    --eol) mapfile -t COMPREPLY < <(compgen -W 'lf crlf' -- "$current") && return ;;
    --mode) mapfile -t COMPREPLY < <(compgen -W '0 1 2' -- "$current") && return ;;
    --limits) mapfile -t COMPREPLY < <(compgen -W 'none depth= nodes= characters= inflated-bytes= inflation-ratio= expansion-ratio= pattern-steps=' -- "$current") && return ;;
    --schema | --catalog | --depfile) mapfile -t COMPREPLY < <(compgen -f -- "$current") && return ;;
    --out) mapfile -t COMPREPLY < <(compgen -d -- "$current") && return ;;
    --encoding) mapfile -t COMPREPLY < <(compgen -W 'utf-8 utf-16 wide' -- "$current") && return ;;
  esac
  local words='convert show check generate split --help -h --version'
  case $command in
    convert) words='--from --to --pretty --compact --indent --eol --encoding --mode --root --declaration --typed --gzip --limits --schema --catalog --follow-locations --force --quiet --help -h' ;;
    check) words='--from --mode --root --limits --schema --catalog --follow-locations --quiet --help -h' ;;
    generate) words='--out --namespace --catalog --list --depfile --help -h' ;;
    split) words='--path --count --from --to --pretty --compact --indent --eol --declaration --typed --gzip --mode --root --limits --help -h' ;;
    show) words='--from --mode --root --limits --octets --help -h' ;;
  esac
  if [ -n "$command" ] && [ "${current:0:1}" != - ]; then
    _rkxml_files "$current"
  else
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  fi
}
complete -F _rkxml -o default rkxml
