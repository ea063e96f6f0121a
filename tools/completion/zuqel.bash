# Completion of zuqel's command line in bash. Commands, options and what an option
# takes are read from `zuqel COMMAND --help`, so they are those of the program that
# is completed.

# Prints the files of the kind that an option or argument takes, and folders.
# Nothing when there is none, or when its kind is not known.
_zuqel_files() {
  local option=$1 current=$2 endings file
  case $option in
    photo | --image) endings='png|jpe?g|hei[cf]|avif' ;;
    --disparity | --depth | --distance) endings='png|jpe?g|pfm' ;;
    --weights) endings='png' ;;
    *) return ;;
  esac
  compgen -f -- "$current" | while read -r file; do
    if [[ -d $file || ${file,,} =~ \.($endings)$ ]]; then
      printf '%s\n' "$file"
    fi
  done
}

# Completes what a value of type $2 of option $1 may be: X,Y|auto is auto.
_zuqel_value() {
  local option=$1 type=$2 current=$3
  case $type in
    FILE | INPUT | PATTERN)
      mapfile -t COMPREPLY < <(_zuqel_files "$option" "$current")
      if [ ${#COMPREPLY[@]} -gt 0 ]; then
        compopt -o filenames
      else
        compopt -o default
      fi
      ;;
    FOLDER) compopt -o dirnames ;;
    *)
      mapfile -t COMPREPLY < <(compgen -W "$(tr '|' '\n' <<<"$type" |
        grep -x '[a-z0-9-]*[a-z][a-z0-9-]*')" -- "$current")
      ;;
  esac
}

_zuqel() {
  local program=${1/#\~/$HOME} current=$2 previous=$3 given=("${COMP_WORDS[@]:1:COMP_CWORD-1}")
  # Bash makes three words of --scale=auto.
  if [ "$current" = = ]; then
    current=
  elif [ "$previous" = = ]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi

  local path=() group line name commands=() names=() word
  local -A types=()
  local option='^  (-[^ ,]+(, -[^ ,]+)*)( ([^ ]+))?( |$)'
  for word in '' "${given[@]}"; do
    # The program's own help first, then that of each command on the way.
    [[ -z $word || " ${commands[*]} " == *" $word "* ]] || continue
    path+=(${word:+"$word"}) commands=() names=() types=() group=
    while IFS= read -r line; do
      case $line in
        [A-Z]*:) group=${line%:} ;;
        '') group= ;;
        '    '*) ;; # more of a description
        *)
          if [[ $group = Options && $line =~ $option ]]; then
            for name in ${BASH_REMATCH[1]//,/}; do
              names+=("$name") types[$name]=${BASH_REMATCH[4]}
            done
          elif [[ $group = Commands && $line =~ ^\ \ ([^ ]+) ]]; then
            commands+=("${BASH_REMATCH[1]}")
          elif [[ $group = Arguments && $line =~ ^\ \ ([^ ]+)(\ ([A-Z]+))? ]]; then
            types[argument]=${BASH_REMATCH[3]:-FILE} name=${BASH_REMATCH[1]}
            types[argument name]=$name
          fi
          ;;
      esac
    done < <("$program" "${path[@]}" --help 2>/dev/null)
  done

  COMPREPLY=()
  if [[ $previous = -* && -n ${types[$previous]-} ]]; then
    _zuqel_value "$previous" "${types[$previous]}" "$current"
  elif [[ $current = -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${names[*]}" -- "$current")
  elif [ ${#commands[@]} -gt 0 ]; then
    mapfile -t COMPREPLY < <(compgen -W "${commands[*]}" -- "$current")
  elif [ -n "${types[argument]-}" ]; then
    _zuqel_value "${types[argument name]}" "${types[argument]}" "$current"
  else
    mapfile -t COMPREPLY < <(compgen -W "${names[*]}" -- "$current")
  fi
}

complete -F _zuqel zuqel
