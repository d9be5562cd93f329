# fish completion for morlen-import
complete -c morlen-import -s o -l output -r -d 'The problem file'
complete -c morlen-import -l groups -d 'List the groups of the mesh'
complete -c morlen-import -l units -x -a 'mm,N cm,kN m,N m,kN m,MN in,lbf in,kip ft,kip' -d 'Units of an .inp file'
complete -c morlen-import -l skip -d 'Skip unknown keywords of an .inp file'
complete -c morlen-import -l no-check -d 'Do not run morlen-check'
complete -c morlen-import -s h -l help -d 'Print help'
complete -c morlen-import -l version -d 'Print the version'
