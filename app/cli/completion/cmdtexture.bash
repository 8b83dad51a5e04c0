# Completion of cmdtexture for bash. The program itself says what may follow.
_cmdtexture() {
    local IFS=$'\n' words=() word joins= i cut= line value
    # Bash breaks words at = and :, which belong to values here.
    for ((i = 1; i <= COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if [[ ${#words[@]} -gt 0 && ( $word == [=:]* || $joins ) ]]; then
            words[-1]+=$word
        else
            words+=("$word")
        fi
        joins=
        [[ $word == *[=:] ]] && joins=yes
    done
    # What stands before the last of them is not part of what bash completes.
    word=${words[-1]}
    [[ $word == *[=:]* ]] && cut=${word%"${word##*[=:]}"}
    # Quotation marks and backslashes are the shell's.
    for i in "${!words[@]}"; do
        [[ ${words[i]} == [\'\"]* ]] && words[i]=${words[i]//[\'\"]/}
        words[i]=${words[i]//\\/}
    done
    COMPREPLY=()
    while read -r line; do
        case $line in
            :files)
                compopt -o filenames
                COMPREPLY+=($(compgen -f -- "${word#"$cut"}"))
                ;;
            :folders)
                compopt -o filenames
                COMPREPLY+=($(compgen -d -- "${word#"$cut"}"))
                ;;
            *)
                value=${line%%$'\t'*}
                [[ $value == *= ]] && compopt -o nospace
                COMPREPLY+=("$(printf %q "${value:${#cut}}")")
                ;;
        esac
    done < <("$1" complete -- "${words[@]}" 2>/dev/null)
}
complete -F _cmdtexture cmdtexture
