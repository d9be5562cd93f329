# fish completion for morlen
complete -c morlen -o p -d 'Write the mesh file for the post-processor'
complete -c morlen -o i -r -d 'Write the progress of the run'
complete -c morlen -o e -r -d 'Write the message of an error into this file'
complete -c morlen -o r0 -d 'Do not renumber the nodes'
