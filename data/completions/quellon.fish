# What fish offers behind "quellon" and "Quellon".

for command in quellon Quellon
    complete -c $command -f
    complete -c $command -l terminal -d 'the terminal view'
    complete -c $command -l plain -d 'lines instead of a screen'
    complete -c $command -l duration -x -d 'end after this time (seconds)'
    complete -c $command -l auto-resume -x -d 'what is frozen thaws after this time (seconds)'
    complete -c $command -l autostart -x -a 'on off status' -d 'start with the session'
    complete -c $command -l snapshot -d 'print the state of the guard for somebody who helps'
    complete -c $command -l redact -r -F -d 'print the shape of a state file'
    complete -c $command -s h -l help -d 'print the options and end'
    complete -c $command -l version -d 'print the version and end'
end
