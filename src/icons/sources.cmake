list(APPEND KORVEL_RESOURCES
    src/icons/korvel_logo.png
)
