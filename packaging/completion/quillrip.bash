# Completion for bash of quillrip's options and of what they take.
_quillrip() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words
    case $previous in
        -o | -i | --report)
            compopt -o filenames 2> /dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        -r) words="100x100 150x150 200x200 204x196 300x300 600x600 1200x1200" ;;
        -b) words="1 8 24" ;;
        -c) words="0 1 2 3 4 5 6 7" ;;
        -faxtif) words="0 1" ;;
        -sync | -writelocal) words="y n" ;;
        -gw | -gh | -limit-pages | -limit-output | -limit-memory | -limit-seconds) return ;;
        *)
            words="-o -i -r -gw -gh -b -c -faxtif -sync -limit-pages -limit-output -limit-memory -limit-seconds --report
                -q -writelocal --trace --help --version"
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F _quillrip quillrip
