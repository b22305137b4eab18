# Completion of trakko-cli for bash.
_trakko_cli() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
  local command=${COMP_WORDS[1]} words="--help --data --json"
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    words="list show totals export download backup restore replay devices --help --version"
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    return
  fi
  case $previous in
    --by) mapfile -t COMPREPLY < <(compgen -W "week month year" -- "$current"); return ;;
    --format) mapfile -t COMPREPLY < <(compgen -W "gpx tcx" -- "$current"); return ;;
    --data | --to) mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
    --output | --port) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
  esac
  case $command in
    list) words="$words --from --to" ;;
    show) words="$words --points" ;;
    totals) words="$words --by" ;;
    export) words="$words --all --from --to --format --output --force" ;;
    download) words="$words --erase --port" ;;
    restore) words="$words --force" ;;
  esac
  case $current in
    -*) mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current") ;;
    *)
      case $command in
        backup | restore | replay) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
        show | export)
          words=$("${COMP_WORDS[0]}" list 2>/dev/null | tail -n +2 | cut -f 1)
          mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
          ;;
      esac
      ;;
  esac
}
complete -o filenames -F _trakko_cli trakko-cli
