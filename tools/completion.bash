# Completion of tessel(1) for bash: commands, their options, then files.

_tessel_options() {
  case $1 in
    tree) echo --no-attributes ;;
    format) echo --pretty --indent --no-declaration --encoding --output ;;
    check) echo --dtd --schema --full --xsd --no-external-dtd ;;
    query) echo --text --lines --count --namespace --no-namespaces ;;
    set) echo --attribute --output --in-place --namespace --no-namespaces ;;
    delete | rename) echo --output --in-place --namespace --no-namespaces ;;
    insert)
      echo --before --after --first --last --text --comment --element \
        --output --in-place --namespace --no-namespaces
      ;;
    edit)
      echo --set --set-attribute --delete --rename --insert-before --insert-after \
        --insert-first --insert-last --output --in-place --namespace \
        --no-namespaces
      ;;
    explain) echo --all --markdown ;;
  esac
}

_tessel() {
  local commands="tree format check query set delete insert rename edit explain"
  local word=${COMP_WORDS[COMP_CWORD]} command="" i
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; ++i)); do
    if [[ " $commands " == *" ${COMP_WORDS[i]} "* ]]; then
      command=${COMP_WORDS[i]}
      break
    fi
  done
  if [[ $word == -* ]]; then
    COMPREPLY=($(compgen -W "--help --no-external --network --dtd $(_tessel_options "$command")
      $([[ $command ]] || echo --version)" -- "$word"))
  elif [[ -z $command ]]; then
    COMPREPLY=($(compgen -W "$commands" -- "$word"))
  fi
}

# Where there is nothing to offer, file names are.
complete -o default -F _tessel tessel
