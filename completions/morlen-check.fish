# fish completion for morlen-check
complete -c morlen-check -l json -d 'Print JSON'
complete -c morlen-check -l quick -d 'Look for motions in small models only'
complete -c morlen-check -l strict -d 'Warnings count as errors'
complete -c morlen-check -s h -l help -d 'Print help'
complete -c morlen-check -l version -d 'Print the version'
