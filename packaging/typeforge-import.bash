# Completion of typeforge-import for bash.
_typeforge_import()
{
    local cur prev words cword patterns
    _init_completion || return
    case $prev in
        -o | --output | --password-file | --report)
            _filedir
            return ;;
        --overwrite)
            mapfile -t COMPREPLY < <(compgen -W "all none ask" -- "$cur")
            return ;;
        -b | --base-path | -t | --table | --type | --create | --user | --root)
            return ;;
    esac
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "--base-path --table --output --list --type --create --user --password-file
            --trusted --overwrite --full --root --report --importers --help --version" -- "$cur")
    elif ((cword == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "$("$1" --importers | cut -f 1)" -- "$cur")
    else
        patterns=$("$1" --importers | awk -F '\t' -v word="${words[1]}" '$1 == word { print $2 }')
        patterns=${patterns//\*./} patterns=${patterns,,}
        if [[ -n $patterns ]]; then
            _filedir "@(${patterns//;/|})"
        else
            mapfile -t COMPREPLY < <(compgen -W "$(odbcinst -q -s 2>/dev/null | tr -d '[]')" -- "$cur")
        fi
    fi
} && complete -F _typeforge_import typeforge-import
