# Completion of cmdtexture for fish. The program itself says what may follow.
function __cmdtexture_complete
    set -l words (commandline --tokenize --cut-at-cursor --current-process)
    set -l current (commandline --current-token --cut-at-cursor)
    for line in ($words[1] complete -- $words[2..-1] $current 2>/dev/null)
        switch $line
            case :files
                __fish_complete_path $current
            case :folders
                __fish_complete_directories $current
            case '*'
                echo $line
        end
    end
end
complete --command cmdtexture --no-files --arguments '(__cmdtexture_complete)'
